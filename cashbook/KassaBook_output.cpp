// TKassaBook: the book printed and exported through the office engine, and the exchange with the
// mobile companion.

#include "KassaBook_frame.h"

#include "CashReport.h"
#include "office/FCustomPreview_frame.h"
#include "office/OfficeEngine.h"
#include "office/OfficeJobWindow.h"
#include "office/OfficeService.h"
#include "ui/Dialogs.h"

#include <QAction>
#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QStringListModel>
#include <QToolButton>

namespace {

const QString kWarning = QStringLiteral("Предупреждение");

// The file name of the printed book: "Кассовая книга", with the customer and object when chosen.
QString outputName(const CashFilter &f) {
    QString name = QStringLiteral("Кассовая книга");
    for (const QString &part : {f.customer, f.object})
        if (!part.isEmpty())
            name += QLatin1Char(' ') + part;
    // Characters a file name cannot hold.
    for (const QChar c : QStringLiteral("/\\:*?\"<>|"))
        name.replace(c, QLatin1Char('_'));
    return name;
}

} // namespace

void TKassaBook::ToolPrintClick() {
    output(Output::Print);
}

void TKassaBook::ToolPDFClick() {
    output(Output::Pdf);
}

void TKassaBook::ToolExcelClick() {
    output(Output::Excel);
}

void TKassaBook::output(Output kind) {
    if (m_outputBusy || !m_ctx.office)
        return;
    QString why;
    if (!OfficeEngine::available(&why)) {
        dialogs().tell(kWarning, why, Dialogs::Icon::Warning);
        emit outputFinished(false, QString());
        return;
    }
    CashReport report;
    if (!CashReportOutput::make(m_book, CheckBoxCheki->isChecked(), &report, &why)) {
        dialogs().tell(QStringLiteral("Ошибка"), QStringLiteral("Чеки не прочитаны: %1").arg(why),
                       Dialogs::Icon::Error);
        emit outputFinished(false, QString());
        return;
    }
    const QString base = outputName(m_book.filter());
    const QString scratch =
        QDir(m_ctx.dataFolder)
            .filePath(
                QStringLiteral("Temp/virn-office/work-%1/Касса").arg(QCoreApplication::applicationPid()));
    QVector<TemplateFile::Output> outputs;
    if (kind == Output::Print) {
        outputs << TemplateFile::Output{QDir(scratch).filePath(base + QStringLiteral(".pdf")),
                                        QStringLiteral("pdf")};
    } else {
        const bool pdf = kind == Output::Pdf;
        const QString suffix = pdf ? QStringLiteral("pdf") : QStringLiteral("xlsx");
        const QString path = dialogs().saveFile(
            pdf ? QStringLiteral("Экспорт в PDF") : QStringLiteral("Экспорт в Excel"), m_ctx.dataFolder,
            base + QLatin1Char('.') + suffix,
            pdf ? QStringLiteral("Документ PDF (*.pdf)") : QStringLiteral("Таблица Excel (*.xlsx)"), suffix);
        if (path.isEmpty())
            return;
        outputs << TemplateFile::Output{path, suffix};
    }

    m_outputBusy = true;
    const QString shown = outputs.first().path;
    OfficeJobWindow::run(
        this, m_ctx.office(), QStringLiteral("Вывод документа"), QStringLiteral("Подготовка кассовой книги…"),
        [report, outputs, scratch](OfficeEngine &engine, QString *error,
                                   const std::function<void(int)> &advance) {
            return CashReportOutput::produce(engine, report, outputs, scratch, error, advance);
        },
        [this, kind, shown, base](const OfficeService::Result &r) {
            m_outputBusy = false;
            if (!r.ok) {
                dialogs().tell(QStringLiteral("Ошибка"), r.error, Dialogs::Icon::Error);
                emit outputFinished(false, QString());
                return;
            }
            if (kind == Output::Print && m_ctx.preview) {
                QString problem;
                if (!m_ctx.preview->showDocument(shown, base, {}, &problem)) {
                    dialogs().tell(QStringLiteral("Ошибка"), problem, Dialogs::Icon::Error);
                    emit outputFinished(false, QString());
                    return;
                }
                m_ctx.preview->setSaveFolder(m_ctx.dataFolder);
                m_ctx.preview->show();
                m_ctx.preview->raise();
                m_ctx.preview->spdPrintClick();
            } else if (m_ctx.status) {
                m_ctx.status(QStringLiteral("Документ сохранён: %1").arg(QDir::toNativeSeparators(shown)));
            }
            emit outputFinished(true, shown);
        });
}

// ----- The mobile companion

void TKassaBook::NGetMobailClick() {
    if (!m_ctx.exchange || m_ctx.exchange->busy())
        return;
    if (dialogs().ask(QStringLiteral("Загрузить мобильную кассу"),
                      QStringLiteral("Синхронизировать кассу с мобильной?")) != Dialogs::Answer::Yes)
        return;
    ToolAndroid->setEnabled(false);
    if (m_ctx.status)
        m_ctx.status(QStringLiteral("Загрузка мобильной кассы…"));
    m_ctx.exchange->fetch(m_book.mobilePath());
}

void TKassaBook::NPostAndroidClick() {
    if (!m_ctx.exchange || m_ctx.exchange->busy())
        return;
    if (dialogs().ask(QStringLiteral("Сохранить мобильную кассу"),
                      QStringLiteral("Заменить мобильную кассу на базу с компьютера?")) !=
        Dialogs::Answer::Yes)
        return;
    ToolAndroid->setEnabled(false);
    if (m_ctx.status)
        m_ctx.status(QStringLiteral("Отправка кассы на сервер…"));
    const QString scratch =
        QDir(m_ctx.dataFolder)
            .filePath(QStringLiteral("Temp/cashbook-%1").arg(QCoreApplication::applicationPid()));
    m_ctx.exchange->upload(m_book.book(), scratch);
}

bool TKassaBook::exchangeRefused(MobileExchange::Outcome outcome, const QString &detail) {
    switch (outcome) {
    case MobileExchange::Outcome::NoConnection:
        dialogs().tell(kWarning, QStringLiteral("Отсутствует подключение к интернету"),
                       Dialogs::Icon::Warning);
        return true;
    case MobileExchange::Outcome::NoServer:
        dialogs().tell(kWarning, detail, Dialogs::Icon::Warning);
        return true;
    default:
        return false;
    }
}

void TKassaBook::fetched(MobileExchange::Outcome outcome, const QString &detail) {
    ToolAndroid->setEnabled(true);
    if (outcome == MobileExchange::Outcome::Done) {
        const MobileMerge::Result merged = m_book.mergeMobile(m_book.mobilePath());
        if (merged.ok) {
            m_customers->setStringList({});
            m_objects->setStringList({});
            enter();
            if (m_ctx.status)
                m_ctx.status(
                    QStringLiteral("Из мобильной кассы добавлено записей: %1, изменено: %2, строк чеков: %3")
                        .arg(merged.appended)
                        .arg(merged.updated)
                        .arg(merged.lines));
            dialogs().tell(QStringLiteral("Касса загружена"), QStringLiteral("Сделано"),
                           Dialogs::Icon::Information);
        } else {
            dialogs().tell(QStringLiteral("Ошибка"), merged.error, Dialogs::Icon::Error);
        }
    } else if (!exchangeRefused(outcome, detail)) {
        dialogs().tell(kWarning,
                       outcome == MobileExchange::Outcome::Missing
                           ? QStringLiteral("Отсутствует база кассы на сервере")
                           : detail,
                       Dialogs::Icon::Warning);
    }
    emit exchangeFinished();
}

void TKassaBook::uploaded(MobileExchange::Outcome outcome, const QString &detail) {
    ToolAndroid->setEnabled(true);
    if (outcome == MobileExchange::Outcome::Done)
        dialogs().tell(QStringLiteral("База загружена на сервер"), QStringLiteral("Готово"),
                       Dialogs::Icon::Information);
    else if (!exchangeRefused(outcome, detail))
        dialogs().tell(QStringLiteral("Проблема с сервером"),
                       outcome == MobileExchange::Outcome::Refused
                           ? QStringLiteral("Касса не загружена")
                           : QStringLiteral("Касса не загружена: ") + detail,
                       Dialogs::Icon::Error);
    emit exchangeFinished();
}
