#pragma once
// The plug-in's window "Площади фигур": the list of figures, the picture of the chosen one, its sizes
// and the area, counted as the sizes are typed.

#include "Shapes.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QStackedWidget;
class ShapePicture;

class TSquareShapes : public QWidget {
    Q_OBJECT
public:
    explicit TSquareShapes(QWidget *parent = nullptr);
    // Shows a figure's page.
    void selectFigure(Shapes::Figure figure);
    // The area line as shown ("Площадь: 12,00 м²" or the reason there is none).
    QString resultText() const;

private:
    void count();
    QLineEdit *sizeField(QWidget *page, const char *name, const QString &label);
    double field(const char *name, bool *ok) const;

    QListWidget *m_list;
    ShapePicture *m_picture;
    QStackedWidget *m_pages;
    QPlainTextEdit *m_vertices;
    QLabel *m_result;
};
