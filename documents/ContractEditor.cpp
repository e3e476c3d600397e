#include "ContractEditor.h"

#include "ContractPageDialog.h"

#include <QAction>
#include <QActionGroup>
#include <QColorDialog>
#include <QComboBox>
#include <QFontComboBox>
#include <QIcon>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>

namespace {

constexpr qreal kIndentStepPx = 1.25 / 2.54 * 96; // 1,25 cm
constexpr qsizetype kMaxPictureBytes = 20 * 1024 * 1024;

// The paragraph tools' pictures: the theme's when the desktop has them, else lines drawn here.
enum class Picture { Left, Center, Right, Justify, Indent, Outdent };

QIcon picture(Picture kind, const char *themeName) {
    if (QIcon::hasThemeIcon(QLatin1String(themeName)))
        return QIcon::fromTheme(QLatin1String(themeName));
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setPen(QPen(QColor(40, 40, 40), 1.4));
    const int widths[] = {14, 9, 14, 9};
    for (int i = 0; i < 4; ++i) {
        const int y = 2 + i * 4;
        int w = widths[i];
        int x = 1;
        switch (kind) {
        case Picture::Center:
            x = (16 - w) / 2;
            break;
        case Picture::Right:
            x = 15 - w;
            break;
        case Picture::Justify:
            w = 14;
            break;
        case Picture::Indent:
        case Picture::Outdent:
            x = (i == 0 || i == 3) ? 1 : 6;
            w = (i == 0 || i == 3) ? 14 : 9;
            break;
        case Picture::Left:
            break;
        }
        p.drawLine(x, y, x + w, y);
    }
    if (kind == Picture::Indent || kind == Picture::Outdent) {
        // An arrow beside the short lines: to the right for more indent, to the left for less.
        const bool in = kind == Picture::Indent;
        QPolygonF arrow;
        arrow << QPointF(in ? 4.5 : 1, 8) << QPointF(in ? 1 : 4.5, 5.5) << QPointF(in ? 1 : 4.5, 10.5);
        p.setBrush(QColor(40, 40, 40));
        p.drawPolygon(arrow);
    }
    return QIcon(pixmap);
}

} // namespace

QVariant TRichViewEdit::loadResource(int type, const QUrl &name) {
    // Only pictures carried by the text itself; never a file or an address elsewhere.
    if (type != QTextDocument::ImageResource || name.scheme() != QLatin1String("data"))
        return {};
    const QByteArray url = name.toEncoded();
    const qsizetype comma = url.indexOf(',');
    if (comma < 0 || url.size() > kMaxPictureBytes * 2)
        return {};
    const QByteArray head = url.left(comma);
    const QByteArray payload = url.mid(comma + 1);
    const QByteArray bytes =
        head.endsWith(";base64") ? QByteArray::fromBase64(payload) : QByteArray::fromPercentEncoding(payload);
    QImage image;
    if (bytes.size() > kMaxPictureBytes || !image.loadFromData(bytes))
        return {};
    return image;
}

ContractEditor::ContractEditor(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ContractEditor"));
    m_bar = new QToolBar(this);
    m_bar->setObjectName(QStringLiteral("ToolBarEditor"));
    m_edit = new TRichViewEdit(this);
    m_edit->setObjectName(QStringLiteral("RichViewEdit1"));
    m_edit->setAcceptRichText(true);
    m_edit->setLineWrapMode(QTextEdit::FixedPixelWidth);
    m_edit->document()->setDefaultFont(QFont(QStringLiteral("Times New Roman"), 12));

    const auto action = [this](const char *name, const QString &text, const QString &tip,
                               QKeySequence key = {}) {
        QAction *a = m_bar->addAction(text);
        a->setObjectName(QLatin1String(name));
        a->setToolTip(
            key.isEmpty() ? tip : QStringLiteral("%1 (%2)").arg(tip, key.toString(QKeySequence::NativeText)));
        if (!key.isEmpty()) {
            a->setShortcut(key);
            a->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        }
        addAction(a);
        return a;
    };

    QAction *undo = action("spdUndo", QStringLiteral("↶"), QStringLiteral("Отменить"));
    QAction *redo = action("spdRedo", QStringLiteral("↷"), QStringLiteral("Повторить"));
    undo->setEnabled(false);
    redo->setEnabled(false);
    connect(undo, &QAction::triggered, m_edit, &QTextEdit::undo);
    connect(redo, &QAction::triggered, m_edit, &QTextEdit::redo);
    connect(m_edit, &QTextEdit::undoAvailable, undo, &QAction::setEnabled);
    connect(m_edit, &QTextEdit::redoAvailable, redo, &QAction::setEnabled);
    m_bar->addSeparator();

    m_font = new QFontComboBox(m_bar);
    m_font->setObjectName(QStringLiteral("cmbFontName"));
    m_font->setToolTip(QStringLiteral("Шрифт"));
    m_font->setMaximumWidth(190);
    m_bar->addWidget(m_font);
    connect(m_font, &QFontComboBox::textActivated, this, &ContractEditor::setFontFamily);
    m_size = new QComboBox(m_bar);
    m_size->setObjectName(QStringLiteral("cmbFontSize"));
    m_size->setToolTip(QStringLiteral("Размер шрифта"));
    m_size->setEditable(true);
    for (int s : {6, 7, 8, 9, 10, 11, 12, 13, 14, 16, 18, 20, 22, 24, 26, 28, 36, 48, 72})
        m_size->addItem(QString::number(s));
    m_size->setMinimumContentsLength(3);
    m_bar->addWidget(m_size);
    connect(m_size, &QComboBox::textActivated, this, [this](const QString &text) {
        bool ok = false;
        const qreal points = QString(text).replace(u',', u'.').toDouble(&ok);
        if (ok && points >= 1 && points <= 400)
            setFontSize(points);
    });
    m_bar->addSeparator();

    m_bold = action("spdBold", QStringLiteral("Ж"), QStringLiteral("Полужирный"), QKeySequence::Bold);
    m_italic = action("spdItalic", QStringLiteral("К"), QStringLiteral("Курсив"), QKeySequence::Italic);
    m_underline =
        action("spdUnderline", QStringLiteral("Ч"), QStringLiteral("Подчёркнутый"), QKeySequence::Underline);
    QFont f = m_bold->font();
    f.setBold(true);
    m_bold->setFont(f);
    f = m_italic->font();
    f.setItalic(true);
    m_italic->setFont(f);
    f = m_underline->font();
    f.setUnderline(true);
    m_underline->setFont(f);
    for (QAction *a : {m_bold, m_italic, m_underline})
        a->setCheckable(true);
    connect(m_bold, &QAction::triggered, this, &ContractEditor::setBold);
    connect(m_italic, &QAction::triggered, this, &ContractEditor::setItalic);
    connect(m_underline, &QAction::triggered, this, &ContractEditor::setUnderline);
    QAction *color = action("spdTextColor", QStringLiteral("А▾"), QStringLiteral("Цвет текста"));
    connect(color, &QAction::triggered, this, &ContractEditor::chooseTextColor);
    QAction *background =
        action("spdBackColor", QStringLiteral("▆▾"), QStringLiteral("Цвет выделения текста"));
    connect(background, &QAction::triggered, this, &ContractEditor::chooseBackgroundColor);
    m_bar->addSeparator();

    auto *align = new QActionGroup(this);
    m_left = action("spdAlignLeft", QStringLiteral("По левому краю"), QStringLiteral("По левому краю"),
                    QKeySequence(Qt::CTRL | Qt::Key_L));
    m_center = action("spdAlignCenter", QStringLiteral("По центру"), QStringLiteral("По центру"),
                      QKeySequence(Qt::CTRL | Qt::Key_E));
    m_right = action("spdAlignRight", QStringLiteral("По правому краю"), QStringLiteral("По правому краю"),
                     QKeySequence(Qt::CTRL | Qt::Key_R));
    m_justify = action("spdAlignJustify", QStringLiteral("По ширине"), QStringLiteral("По ширине"),
                       QKeySequence(Qt::CTRL | Qt::Key_J));
    m_left->setIcon(picture(Picture::Left, "format-justify-left"));
    m_center->setIcon(picture(Picture::Center, "format-justify-center"));
    m_right->setIcon(picture(Picture::Right, "format-justify-right"));
    m_justify->setIcon(picture(Picture::Justify, "format-justify-fill"));
    const QList<QPair<QAction *, Qt::Alignment>> alignments{{m_left, Qt::AlignLeft},
                                                            {m_center, Qt::AlignHCenter},
                                                            {m_right, Qt::AlignRight},
                                                            {m_justify, Qt::AlignJustify}};
    for (const auto &[a, how] : alignments) {
        a->setCheckable(true);
        align->addAction(a);
        connect(a, &QAction::triggered, this, [this, how = how] { setAlignment(how); });
    }
    QAction *outdent =
        action("spdOutdent", QStringLiteral("Уменьшить отступ"), QStringLiteral("Уменьшить отступ"));
    QAction *indentMore =
        action("spdIndent", QStringLiteral("Увеличить отступ"), QStringLiteral("Увеличить отступ"));
    outdent->setIcon(picture(Picture::Outdent, "format-indent-less"));
    indentMore->setIcon(picture(Picture::Indent, "format-indent-more"));
    connect(outdent, &QAction::triggered, this, [this] { indent(-1); });
    connect(indentMore, &QAction::triggered, this, [this] { indent(1); });
    m_bar->addSeparator();
    QAction *page = action("spdPageSetup", QStringLiteral("Параметры страницы…"),
                           QStringLiteral("Размер бумаги, ориентация, поля"));
    connect(page, &QAction::triggered, this, &ContractEditor::pageOptions);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_bar);
    layout->addWidget(m_edit, 1);

    connect(m_edit, &QTextEdit::currentCharFormatChanged, this, &ContractEditor::charFormatChanged);
    connect(m_edit, &QTextEdit::cursorPositionChanged, this, &ContractEditor::alignmentChanged);
    connect(m_edit->document(), &QTextDocument::modificationChanged, this,
            [this](bool modified) { emit editedChanged(modified || m_pageEdited); });
    layOutPage();
}

void ContractEditor::setContent(const QString &html) {
    m_edit->setHtml(html);
    m_edit->document()->clearUndoRedoStacks();
    m_edit->document()->setModified(false);
    m_edit->moveCursor(QTextCursor::Start);
    m_pageEdited = false;
    emit editedChanged(false);
}

void ContractEditor::clearContent() {
    setContent(QString());
}

bool ContractEditor::isModified() const {
    return m_edit->document()->isModified();
}

void ContractEditor::setPage(const OfficeEngine::Page &page) {
    m_page = page;
    m_pageEdited = false;
    layOutPage();
    emit editedChanged(isModified());
}

void ContractEditor::changePage(const OfficeEngine::Page &page) {
    m_page = page;
    m_pageEdited = true;
    layOutPage();
    emit editedChanged(true);
}

void ContractEditor::layOutPage() {
    // The width of the page's text at the screen's resolution.
    const int textWidth = (m_page.landscape ? qMax(m_page.width, m_page.height) : m_page.width) -
                          qMax(0, m_page.left) - qMax(0, m_page.right);
    const qreal px = qMax(2000, textWidth) / 2540.0 * m_edit->logicalDpiX();
    m_edit->setLineWrapColumnOrWidth(qRound(px));
}

void ContractEditor::mergeFormat(const QTextCharFormat &format) {
    QTextCursor cursor = m_edit->textCursor();
    if (!cursor.hasSelection())
        cursor.select(QTextCursor::WordUnderCursor);
    cursor.mergeCharFormat(format);
    m_edit->mergeCurrentCharFormat(format);
    m_edit->setFocus();
}

void ContractEditor::setBold(bool on) {
    QTextCharFormat f;
    f.setFontWeight(on ? QFont::Bold : QFont::Normal);
    mergeFormat(f);
}

void ContractEditor::setItalic(bool on) {
    QTextCharFormat f;
    f.setFontItalic(on);
    mergeFormat(f);
}

void ContractEditor::setUnderline(bool on) {
    QTextCharFormat f;
    f.setFontUnderline(on);
    mergeFormat(f);
}

void ContractEditor::setFontFamily(const QString &family) {
    QTextCharFormat f;
    f.setFontFamilies({family});
    mergeFormat(f);
}

void ContractEditor::setFontSize(qreal points) {
    QTextCharFormat f;
    f.setFontPointSize(points);
    mergeFormat(f);
}

void ContractEditor::setTextColor(const QColor &color) {
    QTextCharFormat f;
    f.setForeground(color);
    mergeFormat(f);
}

void ContractEditor::setBackgroundColor(const QColor &color) {
    QTextCharFormat f;
    f.setBackground(color);
    mergeFormat(f);
}

void ContractEditor::setAlignment(Qt::Alignment alignment) {
    m_edit->setAlignment(alignment | Qt::AlignAbsolute);
    alignmentChanged();
}

void ContractEditor::indent(int steps) {
    QTextCursor cursor = m_edit->textCursor();
    cursor.beginEditBlock();
    const int first = m_edit->document()->findBlock(cursor.selectionStart()).blockNumber();
    const int last = m_edit->document()->findBlock(cursor.selectionEnd()).blockNumber();
    for (int n = first; n <= last; ++n) {
        QTextCursor c(m_edit->document()->findBlockByNumber(n));
        QTextBlockFormat f = c.blockFormat();
        // A left margin (rather than the editor's own indent level) is what the engine reads back.
        f.setLeftMargin(qMax<qreal>(0, f.leftMargin() + steps * kIndentStepPx));
        c.setBlockFormat(f);
    }
    cursor.endEditBlock();
}

void ContractEditor::insertText(const QString &text) {
    m_edit->textCursor().insertText(text);
    m_edit->setFocus();
}

void ContractEditor::charFormatChanged(const QTextCharFormat &format) {
    m_bold->setChecked(format.fontWeight() >= QFont::DemiBold);
    m_italic->setChecked(format.fontItalic());
    m_underline->setChecked(format.fontUnderline());
    const QStringList families = format.fontFamilies().toStringList();
    if (!families.isEmpty())
        m_font->setCurrentFont(QFont(families.first()));
    if (format.fontPointSize() > 0)
        m_size->setEditText(QString::number(format.fontPointSize()));
}

void ContractEditor::alignmentChanged() {
    const Qt::Alignment a = m_edit->alignment();
    if (a & Qt::AlignHCenter)
        m_center->setChecked(true);
    else if (a & Qt::AlignRight)
        m_right->setChecked(true);
    else if (a & Qt::AlignJustify)
        m_justify->setChecked(true);
    else
        m_left->setChecked(true);
}

void ContractEditor::chooseTextColor() {
    const QColor c = QColorDialog::getColor(m_edit->textColor(), this, QStringLiteral("Цвет текста"));
    if (c.isValid())
        setTextColor(c);
}

void ContractEditor::chooseBackgroundColor() {
    const QColor c = QColorDialog::getColor(Qt::yellow, this, QStringLiteral("Цвет выделения текста"));
    if (c.isValid())
        setBackgroundColor(c);
}

void ContractEditor::pageOptions() {
    ContractPageDialog dialog(m_page, this);
    if (dialog.exec() == QDialog::Accepted && !(dialog.page() == m_page))
        changePage(dialog.page());
}
