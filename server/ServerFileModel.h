#pragma once
// The file grid of the server files (AdvStringGrid1): upload time, name, type and address of the rows
// the chosen address and kind select. Names and addresses are shown with double quotes where the
// store keeps backticks.

#include "StoredFile.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QList>

class ServerFileModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Data, Name, Type, Address, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    void setFiles(const QList<StoredFile> &files);
    const StoredFile &file(int row) const { return m_files.at(row); }
    const QList<StoredFile> &files() const { return m_files; }
    // The row of a file by its identity (name and upload time), or -1.
    int rowOf(const QString &name, const QString &data) const;
    // The icon of each kind (ServerFileKinds order); kindless files get `other`.
    void setIcons(const QList<QIcon> &kinds, const QIcon &other);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    QList<StoredFile> m_files;
    QList<QIcon> m_icons;
    QIcon m_other;
};
