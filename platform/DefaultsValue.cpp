#include "platform/DefaultsValue.h"

#include "platform/JsonText.h"

#include <QDebug>

namespace lumaro {

namespace {

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
    return data ? decodedJson(*data) : QJsonValue(QJsonValue::Undefined);
}

void DefaultsValue::write(const QJsonValue &value)
{
    write([value] { return value; });
}

void DefaultsValue::write(std::function<QJsonValue()> makeValue)
{
    m_writer.write([makeValue = std::move(makeValue)] { return encodedJson(makeValue()); });
}

bool DefaultsValue::setAside()
{
    const auto done = m_defaults.setAside(m_key);
    if (!done)
        logFailure(m_key, done.error());
    return done.has_value();
}

} // namespace lumaro
