#include "KoefModel.h"

#include <QBrush>
#include <QColor>

namespace {

const QStringList kUnitCodes = {QStringLiteral("proc"), QStringLiteral("num")};
const QStringList kActionCodes = {QStringLiteral("inc"), QStringLiteral("dec")};
const QStringList kTypeCodes = {QStringLiteral("work"), QStringLiteral("mat"), QStringLiteral("all")};

} // namespace

KoefModel::KoefModel(std::function<QSqlDatabase()> database, QObject *parent)
    : QAbstractTableModel(parent), m_database(std::move(database)) {}

QStringList KoefModel::choices(int column) {
    switch (column) {
    case KoefCol::Unit:
        return {QStringLiteral("%"), QStringLiteral("число")};
    case KoefCol::Action:
        return {QStringLiteral("повышает"), QStringLiteral("понижает")};
    case KoefCol::Applies:
        return {QStringLiteral("работы"), QStringLiteral("материалы"), QStringLiteral("работы и материалы")};
    default:
        return {};
    }
}

void KoefModel::reload() {
    beginResetModel();
    QSqlDatabase db = m_database();
    m_lines = db.isOpen() ? Coefficients::readAll(db) : std::vector<KoefLine>{};
    m_applied = db.isOpen() ? Coefficients::readApplied(db) : std::vector<KoefLine>{};
    endResetModel();
}

void KoefModel::setResult(const KoefResult &result) {
    m_result = result;
    if (!m_lines.empty())
        emit dataChanged(index(0, 0), index(rowCount() - 1, KoefCol::Count - 1));
}

void KoefModel::asStep(const QString &title, const std::function<void()> &change) {
    if (m_wrapper)
        m_wrapper(title, change);
    else
        change();
}

bool KoefModel::store(const KoefLine &line) {
    QSqlDatabase db = m_database();
    m_error.clear();
    if (!db.isOpen() || !Coefficients::update(db, line, &m_error)) {
        if (m_error.isEmpty())
            m_error = QStringLiteral("рабочая база сметы не открыта");
        return false;
    }
    m_applied = Coefficients::readApplied(db);
    emit linesChanged();
    return true;
}

int KoefModel::addLine() {
    QSqlDatabase db = m_database();
    int maxRows = -1;
    for (const KoefLine &l : m_lines)
        maxRows = std::max(maxRows, l.rows.toInt());
    const KoefLine line{QString(),
                        QString::number(maxRows + 1),
                        QStringLiteral("-1"),
                        QStringLiteral("Новый коэффициент"),
                        QStringLiteral("0"),
                        QStringLiteral("all"),
                        QStringLiteral("inc"),
                        QStringLiteral("proc"),
                        QString()};
    m_error.clear();
    bool ok = false;
    asStep(QStringLiteral("Добавить коэффициент"),
           [&] { ok = db.isOpen() && Coefficients::insert(db, line, &m_error); });
    if (!ok)
        return -1;
    reload();
    emit linesChanged();
    return rowCount() - 1;
}

bool KoefModel::removeLine(int row) {
    if (row < 0 || row >= rowCount())
        return false;
    QSqlDatabase db = m_database();
    m_error.clear();
    bool ok = false;
    asStep(QStringLiteral("Удалить коэффициент"), [&] {
        ok = db.isOpen() && Coefficients::remove(db, m_lines[static_cast<size_t>(row)].id, &m_error);
    });
    if (!ok)
        return false;
    reload();
    emit linesChanged();
    return true;
}

QString KoefModel::problemOf(const KoefLine &line) const {
    const QString own = Coefficients::valueProblem(line);
    return own.isEmpty() ? m_result.problems.value(line.id) : own;
}

int KoefModel::problemCellCount() const {
    int n = 0;
    for (const KoefLine &l : m_lines)
        if (!problemOf(l).isEmpty())
            ++n;
    return n;
}

int KoefModel::rowCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_lines.size());
}

int KoefModel::columnCount(const QModelIndex &parent) const {
    return parent.isValid() ? 0 : KoefCol::Count;
}

QString KoefModel::display(const KoefLine &l, int column) const {
    switch (column) {
    case KoefCol::Title:
        return l.title;
    case KoefCol::Value:
        return l.value;
    case KoefCol::Unit:
        return choices(column).at(l.percent() ? 0 : 1);
    case KoefCol::Action:
        return choices(column).at(l.raises() ? 0 : 1);
    case KoefCol::Applies: {
        const int i = kTypeCodes.indexOf(l.type.trimmed());
        return choices(column).at(i < 0 ? 2 : i);
    }
    case KoefCol::Effect:
        if (!l.on() || !m_result.effect.contains(l.id))
            return QString();
        return m_result.effect.value(l.id).text();
    default:
        return QString();
    }
}

QVariant KoefModel::data(const QModelIndex &index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const KoefLine &l = m_lines[static_cast<size_t>(index.row())];
    const QString problem = index.column() == KoefCol::Value ? problemOf(l) : QString();
    const bool bad = !problem.isEmpty();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return display(l, index.column());
    case Qt::CheckStateRole:
        return index.column() == KoefCol::On ? QVariant(l.on() ? Qt::Checked : Qt::Unchecked) : QVariant();
    case Qt::BackgroundRole:
        return bad ? QVariant(QBrush(QColor(0xFF, 0xC8, 0xC8))) : QVariant();
    case Qt::ToolTipRole:
        if (bad)
            return problem;
        if (l.isVat() && !l.raises())
            return QStringLiteral("НДС входит в сумму: показана его величина, итог не меняется.");
        return {};
    case Qt::TextAlignmentRole:
        return index.column() == KoefCol::Value || index.column() == KoefCol::Effect
                   ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                   : QVariant();
    default:
        return {};
    }
}

bool KoefModel::setData(const QModelIndex &index, const QVariant &value, int role) {
    if (!index.isValid() || index.row() >= rowCount())
        return false;
    KoefLine l = m_lines[static_cast<size_t>(index.row())];
    const QString text = value.toString();
    auto code = [&](const QStringList &codes) {
        const int i = choices(index.column()).indexOf(text);
        return i < 0 ? QString() : codes.at(i);
    };
    if (role == Qt::CheckStateRole && index.column() == KoefCol::On) {
        l.checked = value.toInt() == Qt::Checked ? QStringLiteral("-1") : QStringLiteral("0");
    } else if (role == Qt::EditRole) {
        switch (index.column()) {
        case KoefCol::Title:
            l.title = text;
            break;
        case KoefCol::Value:
            l.value = text.trimmed();
            break;
        case KoefCol::Unit:
            l.numOrProc = code(kUnitCodes);
            break;
        case KoefCol::Action:
            l.actionn = code(kActionCodes);
            break;
        case KoefCol::Applies:
            l.type = code(kTypeCodes);
            break;
        default:
            return false;
        }
        if (l.numOrProc.isEmpty() || l.actionn.isEmpty() || l.type.isEmpty())
            return false; // not one of the offered choices
    } else {
        return false;
    }
    bool ok = false;
    asStep(QStringLiteral("Изменение коэффициента «%1»").arg(l.title.trimmed()), [&] { ok = store(l); });
    if (!ok)
        return false;
    m_lines[static_cast<size_t>(index.row())] = l;
    emit dataChanged(this->index(index.row(), 0), this->index(index.row(), KoefCol::Count - 1));
    return true;
}

Qt::ItemFlags KoefModel::flags(const QModelIndex &index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags f = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (index.column() == KoefCol::On)
        f |= Qt::ItemIsUserCheckable;
    else if (index.column() != KoefCol::Effect)
        f |= Qt::ItemIsEditable;
    return f;
}

QVariant KoefModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal)
        return {};
    static const QStringList h = {QStringLiteral("Вкл."),     QStringLiteral("Коэффициент"),
                                  QStringLiteral("Значение"), QStringLiteral("Ед."),
                                  QStringLiteral("Действие"), QStringLiteral("Применяется к"),
                                  QStringLiteral("Сумма")};
    return section >= 0 && section < h.size() ? h.at(section) : QVariant();
}
