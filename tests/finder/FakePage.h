#pragma once

#include <QFile>
#include <QJSEngine>
#include <QTest>
#include <QUrl>
#include <QVariant>

namespace lumaro {

/// What the page's URL is made of; the engine's own does not resolve addresses.
class AddressResolver : public QObject
{
    Q_OBJECT

public:
    Q_INVOKABLE QString resolved(const QString &address, const QString &base) const
    {
        return QUrl(base).resolved(QUrl(address)).toString(QUrl::FullyEncoded);
    }
};

/// Runs page scripts in a real JavaScript engine on a page that has only what they touch.
class FakePage
{
public:
    FakePage()
    {
        QFile prelude(QFINDTESTDATA("page.js"));
        QVERIFY(prelude.open(QIODevice::ReadOnly));
        m_engine.globalObject().setProperty(QStringLiteral("resolver"),
                                            m_engine.newQObject(new AddressResolver));
        run(QString::fromUtf8(prelude.readAll()));
    }

    /// The script's value; a test fails when it throws.
    QVariant run(const QString &script)
    {
        const QJSValue value = m_engine.evaluate(script);
        if (value.isError())
            QTest::qFail(qPrintable(value.toString()), __FILE__, __LINE__);
        return value.toVariant();
    }

    /// What has been posted since the last call.
    QVariantList takeMessages() { return run(QStringLiteral("messages.splice(0)")).toList(); }

private:
    QJSEngine m_engine;
};

} // namespace lumaro
