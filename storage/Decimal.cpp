#include "Decimal.h"

#include <algorithm>

namespace DecimalMath {

__int128 pow10(int n) {
    __int128 p = 1;
    for (int i = 0; i < n; ++i)
        p *= 10;
    return p;
}

__int128 divideRounded(__int128 num, __int128 den) {
    if (den < 0) {
        num = -num;
        den = -den;
    }
    __int128 q = num / den;
    const __int128 r = num % den;
    const __int128 twice = (r < 0 ? -r : r) * 2;
    if (twice >= den)
        q += num < 0 ? -1 : 1;
    return q;
}

int digits(__int128 v) {
    if (v < 0)
        v = -v;
    int n = 1;
    while (v >= 10) {
        v /= 10;
        ++n;
    }
    return n;
}

} // namespace DecimalMath

using namespace DecimalMath;

std::optional<Decimal> Decimal::normalised(__int128 mantissa, int scale) {
    while (scale > 0 && mantissa % 10 == 0) {
        mantissa /= 10;
        --scale;
    }
    if (mantissa == 0)
        return Decimal();
    if (scale < 0 || scale > kMaxScale || digits(mantissa) > kMaxDigits)
        return std::nullopt;
    return Decimal(static_cast<qint64>(mantissa), scale);
}

std::optional<Decimal> Decimal::of(qint64 mantissa, int scale) {
    return normalised(mantissa, scale);
}

Decimal Decimal::negated() const {
    return Decimal(-m_mantissa, m_scale); // 18 digits: the negation always fits
}

std::optional<Decimal> Decimal::plus(const Decimal &other) const {
    const int scale = std::max(m_scale, other.m_scale);
    const __int128 a = static_cast<__int128>(m_mantissa) * pow10(scale - m_scale);
    const __int128 b = static_cast<__int128>(other.m_mantissa) * pow10(scale - other.m_scale);
    return normalised(a + b, scale);
}

std::optional<Decimal> Decimal::times(const Decimal &other, int maxScale) const {
    maxScale = std::clamp(maxScale, 0, kMaxScale);
    // Each mantissa is below 10^18, so the product stays below 10^36.
    __int128 product = static_cast<__int128>(m_mantissa) * other.m_mantissa;
    int scale = m_scale + other.m_scale;
    if (scale > maxScale) {
        product = divideRounded(product, pow10(scale - maxScale));
        scale = maxScale;
    }
    return normalised(product, scale);
}

int Decimal::compare(const Decimal &other) const {
    const int scale = std::max(m_scale, other.m_scale);
    const __int128 a = static_cast<__int128>(m_mantissa) * pow10(scale - m_scale);
    const __int128 b = static_cast<__int128>(other.m_mantissa) * pow10(scale - other.m_scale);
    return a < b ? -1 : (a > b ? 1 : 0);
}

QString Decimal::text(int minDecimals, int maxDecimals) const {
    maxDecimals = std::clamp(maxDecimals, 0, kMaxScale);
    minDecimals = std::clamp(minDecimals, 0, maxDecimals);
    __int128 m = m_mantissa;
    int scale = m_scale;
    if (scale > maxDecimals) {
        m = divideRounded(m, pow10(scale - maxDecimals));
        scale = maxDecimals;
        while (scale > 0 && m % 10 == 0) {
            m /= 10;
            --scale;
        }
    }
    const bool negative = m < 0;
    const quint64 magnitude = static_cast<quint64>(negative ? -m : m);
    QString digitsText = QString::number(magnitude);
    if (digitsText.size() <= scale)
        digitsText.prepend(QString(scale - digitsText.size() + 1, QLatin1Char('0')));
    QString whole = digitsText.left(digitsText.size() - scale);
    QString decimals = digitsText.right(scale);
    while (decimals.size() < minDecimals)
        decimals += QLatin1Char('0');
    QString out = negative ? QStringLiteral("-") : QString();
    out += whole;
    if (!decimals.isEmpty())
        out += QLatin1Char(',') + decimals;
    return out;
}

double Decimal::toDouble() const {
    return static_cast<double>(m_mantissa) / static_cast<double>(pow10(m_scale));
}
