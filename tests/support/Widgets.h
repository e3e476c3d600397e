#pragma once
// Finding a window's components by objectName, as the user's names for them are fixed: a missing one
// fails the test with its name.

#include <QObject>
#include <QString>
#include <gtest/gtest.h>

template <typename T> T *child(QObject *root, const QString &name) {
    T *found = root ? root->findChild<T *>(name) : nullptr;
    if (!found)
        ADD_FAILURE() << "no component named " << name.toStdString();
    return found;
}
