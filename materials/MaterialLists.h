#pragma once
// The materials lists as the main window uses them: which sheet is shown, the filter word, the list
// grid's model, and the names of the current sheet for the materials live search (what FDQueryFindMat
// holds: every material of the sheet, whatever the filter shows).

#include "MatListModel.h"
#include "pricebase/LiveSearch.h"

#include <QObject>

class TModuleSQL;

class MaterialLists : public QObject {
    Q_OBJECT
public:
    explicit MaterialLists(TModuleSQL *module = nullptr, QObject *parent = nullptr);
    void setModule(TModuleSQL *module) { m_module = module; }
    bool hasModule() const { return m_module != nullptr; }

    MatListModel &model() { return m_model; }
    const LiveSearch &liveSearch() const { return m_search; }
    int sheet() const { return m_model.sheet(); }
    QString table() const { return m_model.table(); }
    QString filterWord() const { return m_word; }

    // ReadSqlMat: sheet 0..2 read into the grid, with the filter word in force. A read without a
    // filter reloads the live-search names.
    bool readSheet(int sheet, QString *error = nullptr);
    bool read(QString *error = nullptr) { return readSheet(sheet(), error); }
    // "Применить фильтр" / "Очистить фильтр".
    bool applyFilter(const QString &word, QString *error = nullptr);
    bool clearFilter(QString *error = nullptr) { return applyFilter(QString(), error); }

    // The material of that name in the current sheet (a live-search choice).
    bool findMaterial(const QString &name, MatRow &out, QString *error = nullptr);
    // "Удалить список материалов".
    bool clearSheet(QString *error = nullptr);
    // An import: the sheet replaced by the rows, then read again without a filter.
    bool replaceSheet(const std::vector<MatRow> &rows, QString *error = nullptr);

    // listmat.db, or an invalid handle (and *error) without a data module.
    QSqlDatabase database(QString *error = nullptr) const;

signals:
    // The model was filled again.
    void sheetRead();

private:
    void reloadNames();

    TModuleSQL *m_module = nullptr;
    MatListModel m_model;
    LiveSearch m_search;
    QString m_word;
    int m_namesSheet = -1; // the sheet whose names the live search holds
};
