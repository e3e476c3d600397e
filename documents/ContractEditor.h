#pragma once
// RichViewEdit1: the contract's rich-text editor with its tool bar (undo, redo, font, size, bold,
// italic, underline, colours, alignment, indent, page options). The text area is laid out at the
// width of the page's text, so lines break about where they break on paper. Pictures are read only
// from data: addresses inside the text; the editor never reaches for files or the network.

#include "office/OfficeEngine.h"

#include <QTextEdit>
#include <QWidget>

class QAction;
class QActionGroup;
class QComboBox;
class QFontComboBox;
class QToolBar;

class TRichViewEdit : public QTextEdit {
    Q_OBJECT
public:
    using QTextEdit::QTextEdit;

protected:
    QVariant loadResource(int type, const QUrl &name) override;
};

class ContractEditor : public QWidget {
    Q_OBJECT
public:
    explicit ContractEditor(QWidget *parent = nullptr);

    TRichViewEdit *edit() const { return m_edit; }
    QToolBar *toolBar() const { return m_bar; }

    // A new text (the engine's HTML already translated): nothing to undo, not modified.
    void setContent(const QString &html);
    void clearContent();
    bool isModified() const;

    // The page the text is laid out for; pageEdited() once the user changed it.
    void setPage(const OfficeEngine::Page &page);
    OfficeEngine::Page page() const { return m_page; }
    bool pageEdited() const { return m_pageEdited; }
    // The page options as the user sets them (also used by the page options dialog).
    void changePage(const OfficeEngine::Page &page);

    // The tools, for the tool bar and for callers that know what they want.
    void setBold(bool on);
    void setItalic(bool on);
    void setUnderline(bool on);
    void setAlignment(Qt::Alignment alignment);
    void setFontFamily(const QString &family);
    void setFontSize(qreal points);
    void setTextColor(const QColor &color);
    void setBackgroundColor(const QColor &color);
    // Moves the paragraphs of the selection by one step of 1,25 cm (a negative step back).
    void indent(int steps);
    void insertText(const QString &text);

signals:
    // Modified or page changed (either counts as an edit of the contract).
    void editedChanged(bool edited);

private:
    void mergeFormat(const QTextCharFormat &format);
    void charFormatChanged(const QTextCharFormat &format);
    void alignmentChanged();
    void chooseTextColor();
    void chooseBackgroundColor();
    void pageOptions();
    void layOutPage();

    QToolBar *m_bar;
    TRichViewEdit *m_edit;
    QFontComboBox *m_font;
    QComboBox *m_size;
    QAction *m_bold, *m_italic, *m_underline;
    QAction *m_left, *m_center, *m_right, *m_justify;
    OfficeEngine::Page m_page{21000, 29700, false, 2500, 1500, 1500, 1500};
    bool m_pageEdited = false;
};
