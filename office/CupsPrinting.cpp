#include "CupsPrinting.h"

#include <QFile>

#include <cups/cups.h>

namespace CupsPrinting {

namespace {

// The largest file sent: a produced document is a few megabytes; this is far past any of them.
constexpr qint64 kMaxBytes = qint64(1) << 30;

QString systemText() {
    const char *text = cupsLastErrorString();
    return text && *text ? QString::fromUtf8(text) : QStringLiteral("нет ответа");
}

// Job options as the print system knows them.
struct Options {
    int count = 0;
    cups_option_t *list = nullptr;
    ~Options() { cupsFreeOptions(count, list); }
    void add(const char *name, const QByteArray &value) {
        count = cupsAddOption(name, value.constData(), count, &list);
    }
};

} // namespace

bool takesPdf(const QString &queue) {
    const QByteArray name = queue.toUtf8();
    cups_dest_t *dest =
        cupsGetNamedDest(CUPS_HTTP_DEFAULT, name.isEmpty() ? nullptr : name.constData(), nullptr);
    if (!dest)
        return false;
    bool takes = false;
    if (cups_dinfo_t *info = cupsCopyDestInfo(CUPS_HTTP_DEFAULT, dest)) {
        takes = cupsCheckDestSupported(CUPS_HTTP_DEFAULT, dest, info, "document-format", CUPS_FORMAT_PDF) != 0;
        cupsFreeDestInfo(info);
    }
    cupsFreeDests(1, dest);
    return takes;
}

int print(const QString &queue, const QString &pdfPath, const QString &title, const PrintJob &job,
          QString *error) {
    const QString where =
        queue.isEmpty() ? QStringLiteral("принтер по умолчанию") : QStringLiteral("«%1»").arg(queue);
    auto fail = [&](const QString &what) {
        *error = QStringLiteral("Документ не отправлен на %1: %2.").arg(where, what);
        return 0;
    };
    QFile file(pdfPath);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("файл «%1» не открыт (%2)").arg(pdfPath, file.errorString()));
    if (file.size() > kMaxBytes)
        return fail(QStringLiteral("файл «%1» слишком велик").arg(pdfPath));

    Options options;
    options.add(CUPS_COPIES, QByteArray::number(qMax(1, job.copies)));
    if (job.copies > 1) {
        options.add("multiple-document-handling", job.collate ? "separate-documents-collated-copies"
                                                              : "separate-documents-uncollated-copies");
        options.add("collate", job.collate ? "true" : "false");
    }
    if (job.fromPage > 0 || job.toPage > 0) {
        const int from = qMax(1, job.fromPage);
        const int to = job.toPage > 0 ? qMax(from, job.toPage) : from;
        options.add("page-ranges", QByteArray::number(from) + '-' + QByteArray::number(to));
    }

    cups_dest_t *dest =
        cupsGetNamedDest(CUPS_HTTP_DEFAULT, queue.isEmpty() ? nullptr : queue.toUtf8().constData(), nullptr);
    if (!dest)
        return fail(QStringLiteral("принтер не найден (%1)").arg(systemText()));
    const QByteArray name = dest->name;
    cupsFreeDests(1, dest);

    const QByteArray jobTitle = title.toUtf8();
    const int id =
        cupsCreateJob(CUPS_HTTP_DEFAULT, name.constData(), jobTitle.constData(), options.count, options.list);
    if (id <= 0)
        return fail(QStringLiteral("задание не создано (%1)").arg(systemText()));
    if (cupsStartDocument(CUPS_HTTP_DEFAULT, name.constData(), id, jobTitle.constData(), CUPS_FORMAT_PDF, 1) !=
        HTTP_STATUS_CONTINUE) {
        const QString text = systemText();
        cupsCancelJob2(CUPS_HTTP_DEFAULT, name.constData(), id, 0);
        return fail(QStringLiteral("документ не принят (%1)").arg(text));
    }
    QByteArray chunk(64 * 1024, Qt::Uninitialized);
    qint64 read = 0;
    while ((read = file.read(chunk.data(), chunk.size())) > 0)
        if (cupsWriteRequestData(CUPS_HTTP_DEFAULT, chunk.constData(), static_cast<size_t>(read)) !=
            HTTP_STATUS_CONTINUE)
            break;
    const bool sent = read == 0;
    const QString readError = read < 0 ? file.errorString() : QString();
    if (cupsFinishDocument(CUPS_HTTP_DEFAULT, name.constData()) != IPP_STATUS_OK || !sent) {
        const QString text = readError.isEmpty() ? systemText() : readError;
        cupsCancelJob2(CUPS_HTTP_DEFAULT, name.constData(), id, 0);
        return fail(QStringLiteral("передача прервана (%1)").arg(text));
    }
    return id;
}

} // namespace CupsPrinting
