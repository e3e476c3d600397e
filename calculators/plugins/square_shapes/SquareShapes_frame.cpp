#include "SquareShapes_frame.h"

#include "ShapePicture.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <vector>

namespace {
// A size field: its objectName and its label.
struct SizeField {
    const char *name;
    const char *label;
};
// A figure's page: its sizes (the polygon has its list of vertices instead).
struct FigurePage {
    Shapes::Figure figure;
    const char *title;
    std::vector<SizeField> sizes;
};
const FigurePage kFigures[] = {
    {Shapes::Figure::Rectangle, "Прямоугольник", {{"RectA", "Длина a, м:"}, {"RectB", "Ширина b, м:"}}},
    {Shapes::Figure::Triangle,
     "Треугольник по трём сторонам",
     {{"TriA", "Сторона a, м:"}, {"TriB", "Сторона b, м:"}, {"TriC", "Сторона c, м:"}}},
    {Shapes::Figure::Circle, "Круг", {{"CircleR", "Радиус r, м:"}}},
    {Shapes::Figure::Ring,
     "Кольцо",
     {{"RingOuter", "Внешний радиус R, м:"}, {"RingInner", "Внутренний радиус r, м:"}}},
    {Shapes::Figure::Trapezoid,
     "Трапеция",
     {{"TrapA", "Основание a, м:"}, {"TrapB", "Основание b, м:"}, {"TrapH", "Высота h, м:"}}},
    {Shapes::Figure::Polygon, "Многоугольник по вершинам", {}},
};
} // namespace

TSquareShapes::TSquareShapes(QWidget *parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("FSquareShapes"));
    setWindowTitle(QStringLiteral("Площади фигур"));
    m_list = new QListWidget(this);
    m_list->setObjectName(QStringLiteral("ListFigures"));
    for (const FigurePage &f : kFigures)
        m_list->addItem(QString::fromUtf8(f.title));
    m_list->setFixedWidth(230);
    m_picture = new ShapePicture(this);
    m_pages = new QStackedWidget(this);
    m_pages->setObjectName(QStringLiteral("PagesFigure"));

    QWidget *poly = nullptr;
    for (const FigurePage &f : kFigures) {
        auto *page = new QWidget(m_pages);
        new QFormLayout(page);
        m_pages->addWidget(page);
        for (const SizeField &size : f.sizes)
            sizeField(page, size.name, QString::fromUtf8(size.label));
        if (f.figure == Shapes::Figure::Polygon)
            poly = page;
    }
    m_vertices = new QPlainTextEdit(poly);
    m_vertices->setObjectName(QStringLiteral("MemoVertices"));
    m_vertices->setPlaceholderText(QStringLiteral("0; 0\n4; 0\n4; 3\n0; 3"));
    static_cast<QFormLayout *>(poly->layout())
        ->addRow(new QLabel(QStringLiteral("Вершины по порядку, по одной в строке: x; y (м)"), poly));
    static_cast<QFormLayout *>(poly->layout())->addRow(m_vertices);
    connect(m_vertices, &QPlainTextEdit::textChanged, this, &TSquareShapes::count);

    m_result = new QLabel(this);
    m_result->setObjectName(QStringLiteral("LabelArea"));
    m_result->setWordWrap(true);
    QFont big = m_result->font();
    big.setPointSizeF(big.pointSizeF() * 1.3);
    big.setBold(true);
    m_result->setFont(big);
    auto *close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("ButtonClose"));
    connect(close, &QPushButton::clicked, this, &QWidget::close);

    auto *right = new QVBoxLayout;
    right->addWidget(m_picture, 3);
    right->addWidget(m_pages, 2);
    right->addWidget(m_result);
    auto *bottom = new QHBoxLayout;
    bottom->addStretch(1);
    bottom->addWidget(close);
    right->addLayout(bottom);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(m_list);
    layout->addLayout(right, 1);

    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0)
            return;
        m_pages->setCurrentIndex(row);
        m_picture->setFigure(kFigures[row].figure);
        count();
    });
    m_list->setCurrentRow(0);
    resize(640, 440);
}

QLineEdit *TSquareShapes::sizeField(QWidget *page, const char *name, const QString &label) {
    auto *edit = new QLineEdit(page);
    edit->setObjectName(QLatin1String(name));
    static_cast<QFormLayout *>(page->layout())->addRow(label, edit);
    connect(edit, &QLineEdit::textChanged, this, &TSquareShapes::count);
    return edit;
}

void TSquareShapes::selectFigure(Shapes::Figure figure) {
    for (int i = 0; i < int(std::size(kFigures)); ++i)
        if (kFigures[i].figure == figure)
            m_list->setCurrentRow(i);
}

double TSquareShapes::field(const char *name, bool *ok) const {
    const auto *edit = findChild<QLineEdit *>(QLatin1String(name));
    const auto v = edit ? Shapes::parseNumber(edit->text()) : std::nullopt;
    if (!v)
        *ok = false;
    return v.value_or(0);
}

QString TSquareShapes::resultText() const {
    return m_result->text();
}

void TSquareShapes::count() {
    const int row = m_list->currentRow();
    if (row < 0)
        return;
    const Shapes::Figure figure = kFigures[row].figure;
    bool ok = true;
    Shapes::Area area;
    switch (figure) {
    case Shapes::Figure::Rectangle:
        area = Shapes::rectangle(field("RectA", &ok), field("RectB", &ok));
        break;
    case Shapes::Figure::Triangle:
        area = Shapes::triangle(field("TriA", &ok), field("TriB", &ok), field("TriC", &ok));
        break;
    case Shapes::Figure::Circle:
        area = Shapes::circle(field("CircleR", &ok));
        break;
    case Shapes::Figure::Ring:
        area = Shapes::ring(field("RingOuter", &ok), field("RingInner", &ok));
        break;
    case Shapes::Figure::Trapezoid:
        area = Shapes::trapezoid(field("TrapA", &ok), field("TrapB", &ok), field("TrapH", &ok));
        break;
    case Shapes::Figure::Polygon: {
        QString problem;
        const auto vertices = Shapes::parseVertices(m_vertices->toPlainText(), &problem);
        m_picture->setVertices(vertices.value_or(QVector<QPointF>()));
        if (!vertices)
            area = {std::nullopt, problem};
        else if (vertices->isEmpty())
            ok = false;
        else
            area = Shapes::polygon(*vertices);
        break;
    }
    }
    m_result->setStyleSheet(QString());
    if (!ok) {
        m_result->setText(QStringLiteral("Введите размеры фигуры."));
    } else if (!area.value) {
        m_result->setText(area.problem);
        m_result->setStyleSheet(QStringLiteral("color: #b00020;"));
    } else {
        m_result->setText(QStringLiteral("Площадь: %1 м²").arg(Shapes::formatArea(*area.value)));
    }
}
