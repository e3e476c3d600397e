#include "MaterialLists.h"

#include "storage/ModuleSQL.h"

MaterialLists::MaterialLists(TModuleSQL *module, QObject *parent)
    : QObject(parent), m_module(module), m_model([this] { return database(); }) {
    // A name typed in edit mode is a name the live search must offer.
    connect(&m_model, &MatListModel::sheetEdited, this, [this] {
        if (m_word.isEmpty())
            reloadNames();
        else
            m_namesSheet = -1; // taken again on the next read of the whole sheet
    });
}

QSqlDatabase MaterialLists::database(QString *error) const {
    if (!m_module) {
        if (error)
            *error = QStringLiteral("Списки материалов не открыты.");
        return {};
    }
    QSqlDatabase db = m_module->database(Db::Mat);
    if (!db.isOpen() && error)
        *error = m_module->failure(Db::Mat);
    return db;
}

void MaterialLists::reloadNames() {
    std::vector<QString> names;
    names.reserve(m_model.rows().size());
    for (const MatRow &r : m_model.rows())
        if (matRowKind(r) == MatRowKind::Material)
            names.push_back(r.name);
    m_search.loadNames(names);
    m_namesSheet = m_model.sheet();
}

bool MaterialLists::readSheet(int sheet, QString *error) {
    if (MatListStore::table(sheet).isEmpty())
        sheet = 0;
    std::vector<MatRow> rows;
    QSqlDatabase db = database(error);
    const bool ok = db.isOpen() && MatListStore::read(db, MatListStore::table(sheet), m_word, rows, error);
    m_model.setSheet(sheet);
    m_model.setRows(std::move(rows));
    if (!ok) {
        m_search.clear();
        m_namesSheet = -1;
    } else if (m_word.isEmpty()) {
        reloadNames();
    } else if (m_namesSheet != sheet) {
        // A filtered read holds part of the sheet; the live search wants all of it.
        std::vector<MatRow> all;
        if (MatListStore::read(db, MatListStore::table(sheet), QString(), all, nullptr)) {
            std::vector<QString> names;
            for (const MatRow &r : all)
                if (matRowKind(r) == MatRowKind::Material)
                    names.push_back(r.name);
            m_search.loadNames(names);
            m_namesSheet = sheet;
        }
    }
    emit sheetRead();
    return ok;
}

bool MaterialLists::applyFilter(const QString &word, QString *error) {
    m_word = word;
    return readSheet(sheet(), error);
}

bool MaterialLists::findMaterial(const QString &name, MatRow &out, QString *error) {
    QSqlDatabase db = database(error);
    return db.isOpen() && MatListStore::findByName(db, table(), name, out, error);
}

bool MaterialLists::clearSheet(QString *error) {
    QSqlDatabase db = database(error);
    if (!db.isOpen() || !MatListStore::clearSheet(db, table(), error))
        return false;
    return read(error);
}

bool MaterialLists::replaceSheet(const std::vector<MatRow> &rows, QString *error) {
    QSqlDatabase db = database(error);
    if (!db.isOpen() || !MatListStore::replaceSheet(db, table(), rows, error))
        return false;
    m_word.clear();
    return read(error);
}
