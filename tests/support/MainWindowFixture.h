#pragma once
// A main window started in a fresh data folder, with scripted dialogs: the common ground of the
// widget tests. Tests link virn_app.

#include "ScriptedDialogs.h"
#include "TestFolder.h"
#include "Widgets.h"
#include "app/TForm1.h"
#include "customers/CustomersPart.h"
#include "estimate/DocumentFilePart.h"
#include "estimate/EditorPart.h"
#include "estimate/EstimateDocument.h"
#include "estimate/EstimateGrid.h"
#include "estimate/HeaderPart.h"
#include "estimate/OutputPart.h"
#include "pricebase/PriceBase.h"
#include "pricebase/PricePart.h"
#include "storage/MainSettings.h"
#include "storage/ModuleSQL.h"

#include "Widgets.h"
#include <QDir>
#include <QSqlQuery>
#include <QVariant>
#include <gtest/gtest.h>
#include <memory>

class MainWindowFixture : public ::testing::Test {
protected:
    void SetUp() override {
        ensureApplication();
        previousDir = QDir::currentPath();
        QDir::setCurrent(folder.path());
        window = std::make_unique<TForm1>(QStringList{});
        module = std::make_unique<TModuleSQL>(window->dataFolder());
        window->attachModule(module.get());
        window->FormShow();
        // The rate grid fills after the window shows; the tests work on the whole list.
        window->part<PricePart>()->priceBase()->waitForRead();
    }
    void TearDown() override {
        window.reset();
        module.reset();
        QDir::setCurrent(previousDir);
    }
    // Types a name into the first data row, as the user would.
    void edit(const QString &text = QStringLiteral("Окраска")) {
        (&window->document().grid())
            ->setData((&window->document().grid())->index(0, EstimateCol::Name), text, Qt::EditRole);
    }
    // The first column of the first row of a query, as an integer (-1 when it fails).
    int count(Db db, const QString &sql) {
        QSqlQuery q(module->database(db));
        return q.exec(sql) && q.next() ? q.value(0).toInt() : -1;
    }

    ScriptedDialogsGuard dialogs;
    TestFolder folder;
    QString previousDir;
    std::unique_ptr<TForm1> window;
    std::unique_ptr<TModuleSQL> module;
};
