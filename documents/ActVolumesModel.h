#pragma once
// The page "Объёмы акта" as a table: one line per estimate row that acts close, under the headings of
// its sections, with "По смете", "Закрыто ранее", "В этом акте" (the one editable column) and
// "Остаток". A quantity that cannot be taken is shown on red with the reason as its tip.

#include "ActVolumes.h"

#include <QAbstractTableModel>
#include <QMap>
#include <QVector>

namespace ActVolumeCol {
enum : int { Number = 0, Code, Name, Unit, Estimate, Closed, ThisAct, Remainder, Count };
}

class ActVolumesModel : public QAbstractTableModel {
    Q_OBJECT
public:
    using QAbstractTableModel::QAbstractTableModel;

    void load(const QVector<ActVolumes::Volume> &volumes);
    const QVector<ActVolumes::Volume> &volumes() const { return m_volumes; }
    // The quantities typed for the next act (key -> text).
    QMap<QString, QString> typed() const;
    // Lines whose "В этом акте" is refused.
    int problemCount() const;
    // Every line of "В этом акте" set to the text, as typed (0: the act closes nothing yet).
    void setAll(const QString &text);
    // Every line back to the remainder (nothing typed).
    void resetToRemainder();
    // The line of the table that shows volume i.
    int lineOf(int volume) const;

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    // A quantity was typed.
    void edited();

private:
    struct Line {
        int volume = -1; // -1: a heading
        QString heading;
    };
    QString cell(const ActVolumes::Volume &v, int column) const;

    QVector<ActVolumes::Volume> m_volumes;
    QVector<Line> m_lines;
};
