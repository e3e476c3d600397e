#include "ContractPageDialog.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

struct Paper {
    const char *name;
    double width, height; // mm, portrait
};
const Paper kPapers[] = {{"A4 (210 × 297 мм)", 210, 297},
                         {"A5 (148 × 210 мм)", 148, 210},
                         {"A3 (297 × 420 мм)", 297, 420},
                         {"Letter (216 × 279 мм)", 215.9, 279.4},
                         {"Legal (216 × 356 мм)", 215.9, 355.6}};

QDoubleSpinBox *millimetres(QWidget *parent, const char *name, double max) {
    auto *box = new QDoubleSpinBox(parent);
    box->setObjectName(QLatin1String(name));
    box->setDecimals(1);
    box->setRange(0, max);
    box->setSuffix(QStringLiteral(" мм"));
    return box;
}

int hundredths(const QDoubleSpinBox *box) {
    return qRound(box->value() * 100);
}

} // namespace

ContractPageDialog::ContractPageDialog(const OfficeEngine::Page &page, QWidget *parent) : QDialog(parent) {
    setObjectName(QStringLiteral("ContractPageDialog"));
    setWindowTitle(QStringLiteral("Параметры страницы"));
    m_paper = new QComboBox(this);
    m_paper->setObjectName(QStringLiteral("cmbPaper"));
    for (const Paper &p : kPapers)
        m_paper->addItem(QString::fromUtf8(p.name));
    m_paper->addItem(QStringLiteral("Другой размер"));
    m_width = millimetres(this, "EditPageWidth", 1000);
    m_height = millimetres(this, "EditPageHeight", 1000);
    m_width->setMinimum(50);
    m_height->setMinimum(50);
    m_portrait = new QRadioButton(QStringLiteral("Книжная"), this);
    m_portrait->setObjectName(QStringLiteral("RadioPortrait"));
    m_landscape = new QRadioButton(QStringLiteral("Альбомная"), this);
    m_landscape->setObjectName(QStringLiteral("RadioLandscape"));
    m_left = millimetres(this, "EditMarginLeft", 200);
    m_right = millimetres(this, "EditMarginRight", 200);
    m_top = millimetres(this, "EditMarginTop", 200);
    m_bottom = millimetres(this, "EditMarginBottom", 200);

    auto *paperBox = new QGroupBox(QStringLiteral("Бумага"), this);
    auto *paperForm = new QFormLayout(paperBox);
    paperForm->addRow(QStringLiteral("Формат:"), m_paper);
    paperForm->addRow(QStringLiteral("Ширина:"), m_width);
    paperForm->addRow(QStringLiteral("Высота:"), m_height);
    auto *orientation = new QHBoxLayout;
    orientation->addWidget(m_portrait);
    orientation->addWidget(m_landscape);
    paperForm->addRow(QStringLiteral("Ориентация:"), orientation);
    auto *marginBox = new QGroupBox(QStringLiteral("Поля"), this);
    auto *marginForm = new QFormLayout(marginBox);
    marginForm->addRow(QStringLiteral("Левое:"), m_left);
    marginForm->addRow(QStringLiteral("Правое:"), m_right);
    marginForm->addRow(QStringLiteral("Верхнее:"), m_top);
    marginForm->addRow(QStringLiteral("Нижнее:"), m_bottom);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(paperBox);
    layout->addWidget(marginBox);
    layout->addWidget(buttons);

    // The page as it lies: the portrait sizes are kept in the fields, the orientation apart.
    const int shortSide = qMin(page.width, page.height);
    const int longSide = qMax(page.width, page.height);
    m_width->setValue(shortSide / 100.0);
    m_height->setValue(longSide / 100.0);
    (page.landscape || page.width > page.height ? m_landscape : m_portrait)->setChecked(true);
    m_left->setValue(qMax(0, page.left) / 100.0);
    m_right->setValue(qMax(0, page.right) / 100.0);
    m_top->setValue(qMax(0, page.top) / 100.0);
    m_bottom->setValue(qMax(0, page.bottom) / 100.0);
    sizeEdited();
    connect(m_paper, &QComboBox::activated, this, &ContractPageDialog::paperChosen);
    connect(m_width, &QDoubleSpinBox::valueChanged, this, &ContractPageDialog::sizeEdited);
    connect(m_height, &QDoubleSpinBox::valueChanged, this, &ContractPageDialog::sizeEdited);
}

void ContractPageDialog::paperChosen(int index) {
    if (index < 0 || index >= int(std::size(kPapers)))
        return;
    m_width->setValue(kPapers[index].width);
    m_height->setValue(kPapers[index].height);
}

void ContractPageDialog::sizeEdited() {
    int match = int(std::size(kPapers));
    for (int i = 0; i < int(std::size(kPapers)); ++i)
        if (qAbs(kPapers[i].width - m_width->value()) < 0.6 &&
            qAbs(kPapers[i].height - m_height->value()) < 0.6)
            match = i;
    m_paper->setCurrentIndex(match);
}

OfficeEngine::Page ContractPageDialog::page() const {
    OfficeEngine::Page p;
    p.landscape = m_landscape->isChecked();
    const int a = hundredths(m_width), b = hundredths(m_height);
    p.width = p.landscape ? qMax(a, b) : qMin(a, b);
    p.height = p.landscape ? qMin(a, b) : qMax(a, b);
    p.left = hundredths(m_left);
    p.right = hundredths(m_right);
    p.top = hundredths(m_top);
    p.bottom = hundredths(m_bottom);
    return p;
}
