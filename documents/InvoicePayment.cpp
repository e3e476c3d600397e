#include "InvoicePayment.h"

#include <QRegularExpression>

#include <qrencode.h>

#include <memory>

namespace InvoicePayment {

namespace {

// A value as the string may carry it: no separator, no line breaks, blanks collapsed, cut to the
// length the standard allows for the field.
QString field(const QString &value, int maxLength) {
    QString v = value;
    v.replace(u'|', u'/');
    v = v.simplified();
    return v.left(maxLength).trimmed();
}

QString digitsOnly(const QString &value) {
    QString v = value;
    v.remove(QRegularExpression(QStringLiteral("\\s")));
    return v;
}

bool allDigits(const QString &v, int length) {
    if (v.size() != length)
        return false;
    for (QChar c : v)
        if (!c.isDigit() || c.unicode() > 127)
            return false;
    return true;
}

} // namespace

QString obstacle(const Payee &payee, const Invoice &invoice) {
    const QString account = digitsOnly(payee.account);
    const QString bik = digitsOnly(payee.bik);
    if (account.isEmpty() || bik.isEmpty())
        return QStringLiteral("QR-код не выводится: у продавца не указаны расчётный счёт или БИК.");
    if (invoice.currency != 0)
        return QStringLiteral("QR-код не выводится: оплата по QR-коду возможна только в рублях.");
    if (!allDigits(account, 20))
        return QStringLiteral("QR-код не выводится: расчётный счёт должен состоять из 20 цифр.");
    if (!allDigits(bik, 9))
        return QStringLiteral("QR-код не выводится: БИК должен состоять из 9 цифр.");
    if (field(payee.name, 160).isEmpty())
        return QStringLiteral("QR-код не выводится: не указано имя продавца.");
    if (field(payee.bank, 45).isEmpty())
        return QStringLiteral("QR-код не выводится: не указано наименование банка.");
    return {};
}

QString purpose(const Invoice &invoice) {
    QString p = QStringLiteral("Оплата по счету № %1 от %2").arg(invoice.number.trimmed(), invoice.date);
    if (invoice.vat)
        p +=
            QStringLiteral(", в т.ч. НДС %1 % %2 руб.").arg(invoice.vatRate).arg(invoice.vatAmount.grouped());
    else
        p += QStringLiteral(", НДС не облагается");
    return p;
}

QString paymentString(const Payee &payee, const Invoice &invoice) {
    if (!obstacle(payee, invoice).isEmpty())
        return {};
    QStringList parts{QStringLiteral("ST00012")};
    auto add = [&parts](const char *key, const QString &value) {
        if (!value.isEmpty())
            parts << QLatin1String(key) + u'=' + value;
    };
    add("Name", field(payee.name, 160));
    add("PersonalAcc", digitsOnly(payee.account));
    add("BankName", field(payee.bank, 45));
    add("BIC", digitsOnly(payee.bik));
    // A bank without a correspondent account is written with "0", as payment forms do.
    const QString kor = field(digitsOnly(payee.koraccount), 20);
    add("CorrespAcc", kor.isEmpty() ? QStringLiteral("0") : kor);
    add("PayeeINN", field(digitsOnly(payee.inn), 12));
    add("KPP", field(digitsOnly(payee.kpp), 9));
    if (invoice.amount.kopecks() > 0)
        add("Sum", QString::number(invoice.amount.kopecks()));
    add("Purpose", field(purpose(invoice), 210));
    return parts.join(u'|');
}

QImage qrImage(const QString &text, double sideCm) {
    const QByteArray data = text.toUtf8();
    std::unique_ptr<QRcode, void (*)(QRcode *)> code(
        QRcode_encodeData(static_cast<int>(data.size()),
                          reinterpret_cast<const unsigned char *>(data.constData()), 0, QR_ECLEVEL_M),
        QRcode_free);
    if (!code || code->width <= 0)
        return {};
    constexpr int kQuiet = 4;  // modules of white around the code
    constexpr int kPixels = 8; // pixels per module
    const int modules = code->width + 2 * kQuiet;
    QImage image(modules * kPixels, modules * kPixels, QImage::Format_Grayscale8);
    image.fill(0xff);
    for (int y = 0; y < image.height(); ++y) {
        const int my = y / kPixels - kQuiet;
        if (my < 0 || my >= code->width)
            continue;
        uchar *line = image.scanLine(y);
        for (int x = 0; x < image.width(); ++x) {
            const int mx = x / kPixels - kQuiet;
            if (mx >= 0 && mx < code->width && (code->data[my * code->width + mx] & 1))
                line[x] = 0; // a dark module
        }
    }
    const int dotsPerMeter = qRound(image.width() / (sideCm / 100.0));
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    return image;
}

} // namespace InvoicePayment
