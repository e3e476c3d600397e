// The estimate's output from the main window, against the real engine: the menu commands make their
// documents on the engine's thread while the window keeps handling events.

#include "OfficeFiles.h"

#include "MainWindowFixture.h"
#include "estimate/EditFromAktSmeta_frame.h"
#include "office/FCustomPreview_frame.h"
#include "office/OfficeEngine.h"
#include "storage/SettingsStore.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTimer>

#ifndef VIRN_SOURCE_DIR
#error "VIRN_SOURCE_DIR names the source tree"
#endif

namespace {

class OutputWindow : public MainWindowFixture {
protected:
    // The sample estimate as a document file of the data folder, opened in the window.
    void openSample() {
        const QString document = folder.file(QStringLiteral("Sm/Образец сметы.sim"));
        ASSERT_TRUE(QFile::copy(folder.file(QStringLiteral("Sp/smeta.db")), document));
        QProcess p;
        p.start(QStringLiteral("sqlite3"), {QStringLiteral("-bail"), document,
                                            QStringLiteral(".read '%1/resources/sample/estimate.sql'")
                                                .arg(QStringLiteral(VIRN_SOURCE_DIR))});
        ASSERT_TRUE(p.waitForFinished(30000));
        ASSERT_EQ(p.exitCode(), 0);
        ASSERT_TRUE(window->OpenMyFile(document));
    }
    // Runs a command and waits for its document, counting the timer ticks the window handled meanwhile.
    bool runAndWait(void (OutputPart::*command)(), QString *path, int *ticks) {
        OutputPart *output = window->part<OutputPart>();
        QSignalSpy done(output, &OutputPart::outputFinished);
        QTimer timer;
        *ticks = 0;
        QObject::connect(&timer, &QTimer::timeout, [ticks] { ++*ticks; });
        timer.start(10);
        (output->*command)();
        if (done.isEmpty() && !done.wait(120000))
            return false;
        *path = done.first().at(1).toString();
        return done.first().at(0).toBool();
    }
};

TEST_F(OutputWindow, ExportsPreviewsAndUsesTheSheetTitles) {
    openSample();
    int ticks = 0;
    QString path;

    const QString pdf = folder.file(QStringLiteral("Вывод/смета.pdf"));
    dialogs->queueFile(pdf);
    ASSERT_TRUE(runAndWait(&OutputPart::MExportPDFClick, &path, &ticks)) << dialogs->lastText().toStdString();
    EXPECT_EQ(path, pdf);
    EXPECT_GT(ticks, 5) << "the window went on handling events while the document was made";
    const QString text = pdfText(pdf).simplified();
    EXPECT_TRUE(text.contains(QStringLiteral("ЛОКАЛЬНЫЙ РЕСУРСНЫЙ СМЕТНЫЙ РАСЧЕТ № 12")));
    EXPECT_TRUE(text.contains(QStringLiteral("274 317,84")));
    ASSERT_EQ(dialogs->shown().last().kind, QStringLiteral("saveFile"));
    EXPECT_EQ(dialogs->shown().last().caption, QStringLiteral("Экспорт в формат PDF"));

    const QString xls = folder.file(QStringLiteral("Вывод/смета.xls"));
    dialogs->queueFile(xls);
    ASSERT_TRUE(runAndWait(&OutputPart::MExportExcelClick, &path, &ticks));
    EXPECT_TRUE(QFile::exists(xls));

    // The user cancels the save dialog: nothing is made.
    dialogs->queueFile(QString());
    window->part<OutputPart>()->MExportPDFClick();
    EXPECT_FALSE(window->part<OutputPart>()->busy());

    ASSERT_TRUE(runAndWait(&OutputPart::MPreviewClick, &path, &ticks));
    EXPECT_TRUE(child<TFCustomPreview>(window.get(), QStringLiteral("FCustomPreview"))->isVisible());
    EXPECT_GE(child<TFCustomPreview>(window.get(), QStringLiteral("FCustomPreview"))->pageCount(), 2);
    EXPECT_TRUE(child<TFCustomPreview>(window.get(), QStringLiteral("FCustomPreview"))
                    ->windowTitle()
                    .contains(QStringLiteral("Образец сметы")));
    child<TFCustomPreview>(window.get(), QStringLiteral("FCustomPreview"))->close();

    // The sheet titles dialog: the new title is stored under its field name and printed.
    child<QComboBox>(window.get(), QStringLiteral("ComboBoxShablon"))
        ->setCurrentText(QStringLiteral("СМЕТА"));
    QTimer::singleShot(0, [] {
        auto *d = qobject_cast<TEditFromAktSmeta *>(QApplication::activeModalWidget());
        ASSERT_NE(d, nullptr);
        d->EditSmetaName->setText(QStringLiteral("СМЕТА НА РЕМОНТ"));
        d->accept();
    });
    window->part<OutputPart>()->MEditFromAktSmetaClick();
    EXPECT_EQ(window->settingsStore()->text(QStringLiteral("View"), QStringLiteral("EditSmetaName")),
              QStringLiteral("СМЕТА НА РЕМОНТ"));
    const QString titled = folder.file(QStringLiteral("Вывод/заголовок.pdf"));
    dialogs->queueFile(titled);
    ASSERT_TRUE(runAndWait(&OutputPart::MExportPDFClick, &path, &ticks));
    EXPECT_TRUE(pdfText(titled).contains(QStringLiteral("СМЕТА НА РЕМОНТ")));
}

TEST_F(OutputWindow, WithoutLibreOfficeTheUserIsToldWhatToInstall) {
    qputenv("VIRN_LIBREOFFICE_DIR", folder.path().toUtf8());
    int ticks = 0;
    QString path;
    EXPECT_FALSE(runAndWait(&OutputPart::MPreviewClick, &path, &ticks));
    qunsetenv("VIRN_LIBREOFFICE_DIR");
    EXPECT_EQ(dialogs->lastText(), OfficeEngine::missingEngineMessage());
    EXPECT_FALSE(child<TFCustomPreview>(window.get(), QStringLiteral("FCustomPreview"))->isVisible());
    // The rest of the program goes on: the document can still be edited and saved.
    edit();
    EXPECT_TRUE(window->isChanged());
}

// A long document is made behind a progress window whose "Отменить" stops it: nothing is written and
// nothing but that is reported.
TEST_F(OutputWindow, AnExportIsCancelledFromItsProgressWindow) {
    openSample();
    const QString pdf = folder.file(QStringLiteral("Вывод/отменённая.pdf"));
    dialogs->queueFile(pdf);
    QTimer::singleShot(100, window.get(), [this] {
        auto *progress = window->findChild<QProgressDialog *>(QStringLiteral("OutputProgress"));
        ASSERT_NE(progress, nullptr);
        auto *button = progress->findChild<QPushButton *>();
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button->text(), QStringLiteral("Отменить"));
        button->click();
    });
    int ticks = 0;
    QString path;
    EXPECT_FALSE(runAndWait(&OutputPart::MExportPDFClick, &path, &ticks));
    EXPECT_FALSE(QFile::exists(pdf));
    EXPECT_FALSE(window->part<OutputPart>()->busy());
    EXPECT_EQ(dialogs->shown().last().kind, QStringLiteral("saveFile")); // no error box after it
    EXPECT_TRUE(window->statusBar()->currentMessage().contains(QStringLiteral("отменён")))
        << window->statusBar()->currentMessage().toStdString();
    // The next document is made as ever.
    dialogs->queueFile(pdf);
    ASSERT_TRUE(runAndWait(&OutputPart::MExportPDFClick, &path, &ticks));
    EXPECT_TRUE(QFile::exists(pdf));
}

} // namespace
