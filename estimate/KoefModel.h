#pragma once
// The coefficient lines of the estimate as a table for the coefficient panel: each change is written
// into table `koef` of the working database at once, so the lines are saved with the document.
// Columns: on/off, title, value, unit ("%" or "число"), action, what it applies to, effect in money.

#include "Coefficients.h"

#include <QAbstractTableModel>
#include <functional>

namespace KoefCol {
enum : int { On = 0, Title, Value, Unit, Action, Applies, Effect, Count };
}

class KoefModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit KoefModel(std::function<QSqlDatabase()> database, QObject *parent = nullptr);

    // Runs a change of the table (change) as one undoable step named title: the estimate editor sets
    // it; without one the change just runs.
    using EditWrapper = std::function<void(const QString &title, const std::function<void()> &change)>;
    void setEditWrapper(EditWrapper wrapper) { m_wrapper = std::move(wrapper); }

    // Reads the lines again from the table.
    void reload();
    const std::vector<KoefLine> &lines() const { return m_lines; }
    // The lines as the totals apply them (read with the per-type, per-action queries).
    const std::vector<KoefLine> &applied() const { return m_applied; }
    void setResult(const KoefResult &result);
    // Why the line's value is marked (not a number, or left out of the totals); empty when it is not.
    QString problemOf(const KoefLine &line) const;
    // How many value cells are marked.
    int problemCellCount() const;

    // A new line (on, 0 %, raising works and materials) at the end; its row.
    int addLine();
    bool removeLine(int row);
    QString lastError() const { return m_error; }

    // The texts offered in the choice columns, in the order of their codes.
    static QStringList choices(int column);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

signals:
    // The table was written: the totals must be applied again.
    void linesChanged();

private:
    QString display(const KoefLine &line, int column) const;
    bool store(const KoefLine &line);
    void asStep(const QString &title, const std::function<void()> &change);

    std::function<QSqlDatabase()> m_database;
    EditWrapper m_wrapper;
    std::vector<KoefLine> m_lines;
    std::vector<KoefLine> m_applied;
    KoefResult m_result;
    QString m_error;
};
