#include "core/StoredValue.h"

#include <cmath>
#include <limits>

namespace vellumine {

std::optional<bool> storedBool(const QVariant& value)
{
    if (value.typeId() == QMetaType::Bool) {
        return value.toBool();
    }
    const std::optional<QString> text = storedText(value);
    if (text == QStringLiteral("true")) {
        return true;
    }
    if (text == QStringLiteral("false")) {
        return false;
    }
    return std::nullopt;
}

std::optional<qint64> storedInteger(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::QString: {
        bool isInteger = false;
        const qint64 integer = value.toLongLong(&isInteger);
        return isInteger ? std::optional(integer) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

std::optional<double> storedNumber(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Float:
    case QMetaType::Double:
    case QMetaType::QString: {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

std::optional<QString> storedText(const QVariant& value)
{
    return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

std::optional<QByteArray> storedData(const QVariant& value)
{
    return value.typeId() == QMetaType::QByteArray ? std::optional(value.toByteArray())
                                                   : std::nullopt;
}

} // namespace vellumine
