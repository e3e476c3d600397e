#pragma once
// Small makers for the fields of a form: a widget named by its component name, and a date field that
// shows the short date ("dd.MM.yyyy") with a calendar.

#include <QDate>
#include <QDateEdit>
#include <QString>

template <typename W> W *named(W *widget, const char *name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

// A null date shows today.
inline QDateEdit *shortDateEdit(const QDate &date, const char *name, QWidget *parent) {
    auto *d = named(new QDateEdit(date.isValid() ? date : QDate::currentDate(), parent), name);
    d->setCalendarPopup(true);
    d->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    return d;
}
