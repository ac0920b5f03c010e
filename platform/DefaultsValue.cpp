#include "platform/DefaultsValue.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonDocument>

namespace lumaro {

namespace {

// A document needs an array or an object around its value.

QByteArray encoded(const QJsonValue &value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return array.sliced(1).chopped(1);
}

QJsonValue decoded(const QByteArray &data)
{
    const QJsonArray array = QJsonDocument::fromJson('[' + data + ']').array();
    return array.size() == 1 ? array.first() : QJsonValue(QJsonValue::Undefined);
}

void logFailure(const QString &key, const UserDefaultsError &error)
{
    qWarning().noquote() << u"Failed to store " + key + u": " + error.description();
}

} // namespace

DefaultsValue::DefaultsValue(UserDefaults &defaults, Scheduler &scheduler, const QString &key)
    : m_defaults(defaults)
    , m_key(key)
    , m_writer(defaults, scheduler, key, [key](const DefaultsWriter::Result &result) {
        if (!result)
            logFailure(key, result.error());
    })
{
}

QJsonValue DefaultsValue::read() const
{
    const auto data = m_defaults.data(m_key);
    return data ? decoded(*data) : QJsonValue(QJsonValue::Undefined);
}

void DefaultsValue::write(const QJsonValue &value)
{
    m_writer.write([value] { return encoded(value); });
}

void DefaultsValue::write(std::function<QJsonValue()> makeValue)
{
    m_writer.write([makeValue = std::move(makeValue)] { return encoded(makeValue()); });
}

bool DefaultsValue::setAside()
{
    const auto done = m_defaults.setAside(m_key);
    if (!done)
        logFailure(m_key, done.error());
    return done.has_value();
}

} // namespace lumaro
