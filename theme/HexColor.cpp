#include "theme/HexColor.h"

#include <algorithm>

namespace {

QString withHash(QString text) {
    if (!text.startsWith(u'#')) text.prepend(u'#');
    return text;
}

}  // namespace

unsigned hx_hexValueToUnsigned(const QString& hexValue) {
    QStringView digits = hexValue;
    if (digits.startsWith(QStringLiteral("0x"), Qt::CaseInsensitive)) digits = digits.mid(2);
    unsigned value = 0;
    for (const QChar digit : digits) {
        bool isDigit = false;
        const unsigned part = QString(digit).toUInt(&isDigit, 16);
        if (!isDigit) break;
        value = value * 16 + part;
    }
    return value;
}

QColor hx_colorWith8BitRed(unsigned red, unsigned green, unsigned blue, double alpha) {
    const auto fraction = [](unsigned component) {
        return std::clamp(static_cast<float>(component) / 255.0F, 0.0F, 1.0F);
    };
    return QColor::fromRgbF(fraction(red), fraction(green), fraction(blue),
                            static_cast<float>(std::clamp(alpha, 0.0, 1.0)));
}

QColor hx_colorWithHexString(QString hexString, double alpha) {
    if (hexString.isEmpty()) return {};
    QString text = withHash(std::move(hexString));
    if (text.size() != 7 && text.size() != 4) return hx_colorWith8BitRed(255, 255, 255, 1.0);
    if (text.size() == 4)
        text = QStringLiteral("#%1%1%2%2%3%3").arg(text[1]).arg(text[2]).arg(text[3]);
    const auto component = [&text](int position) {
        return hx_hexValueToUnsigned(QStringLiteral("0x") + text.mid(position, 2));
    };
    return hx_colorWith8BitRed(component(1), component(3), component(5), alpha);
}

QColor hx_colorWithHexString(QString hexString) {
    if (hexString.isEmpty()) return {};
    QString text = withHash(std::move(hexString));
    double alpha = 1.0;
    if (text.size() == 5 || text.size() == 9) {
        const int digits = text.size() == 5 ? 1 : 2;
        QString alphaText = text.mid(1, digits);
        if (digits == 1) alphaText += alphaText;
        alpha = hx_hexValueToUnsigned(QStringLiteral("0x") + alphaText) / 255.0;
        text = u'#' + text.mid(1 + digits);
    }
    return hx_colorWithHexString(text, alpha);
}

QColor __HexColor(const char* hexString) {
    if (!hexString) return {};
    QString text = QString::fromUtf8(hexString);
    if (text.startsWith(QStringLiteral("0x"))) text = text.mid(2);
    return hx_colorWithHexString(text);
}
