#pragma once
// Moving the estimate between the grids and the working database Sp/smeta.db.

#include <QList>
#include <QMap>
#include <QPair>
#include <QSqlDatabase>
#include <QString>

class EstimateGrid;
class CrewGrid;
class TModuleSQL;

namespace EstimateStore {

using Parameters = QList<QPair<QString, QString>>;

// ReadSQLsmeta: fills both grids from table smeta (an empty table gives one empty data row), fills
// ks2 with the act defaults (ActFields) where fields are missing. Returns false with the database's
// reason on failure.
bool readSmeta(QSqlDatabase db, EstimateGrid &grid, CrewGrid &crew, QString *error = nullptr);

// WriteSQLparams: rewrites table smeta from the grids (one record per data row, in grid order) and
// stores the document parameters, in one transaction. Rows without a work id get a new one, which is
// written back into the grid.
bool writeSmeta(QSqlDatabase db, EstimateGrid &grid, const CrewGrid &crew, const Parameters &params,
                QString *error = nullptr);

// The named document parameters (table parametrs).
QMap<QString, QString> readParameters(QSqlDatabase db);
bool writeParameters(QSqlDatabase db, const Parameters &params, QString *error = nullptr);

// CreateNewDoc: clears the grids and resets the document tables of the working database and the undo
// journal of actions.db, then writes the default act data and coefficient lines.
bool createNewDoc(TModuleSQL &module, EstimateGrid &grid, CrewGrid &crew, QString *error = nullptr);

// Default rows of koef (the coefficient lines).
bool writeDefaultKoefLines(QSqlDatabase db);

} // namespace EstimateStore

// Names of the document parameters kept in table parametrs.
namespace DocParam {
inline const QString customer = QStringLiteral("Customer");
inline const QString object = QStringLiteral("Object");
inline const QString contractor = QStringLiteral("Contractor");
inline const QString currency = QStringLiteral("Currency");
inline const QString date = QStringLiteral("DateSmeta");
inline const QString number = QStringLiteral("NumericSmeta");
inline const QString numberWord = QStringLiteral("NumericSmetaWord");
inline const QString nameWork = QStringLiteral("NameWork");
inline const QString title = QStringLiteral("Shablon");
inline const QString koefBrig = QStringLiteral("EditKoefBrig");
inline const QString koefBrigPerRow = QStringLiteral("RadioButtonKoefBrig");
} // namespace DocParam
