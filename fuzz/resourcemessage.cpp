// Posts any JSON as a page's script would; what is let through must be a web address within bounds.

#include "finder/SnifferNetworkMonitor.h"
#include "tests/fakes/FakeScheduler.h"

#include <QJsonDocument>

#include <cstddef>
#include <cstdint>

using namespace lumaro;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text(reinterpret_cast<const char *>(data), qsizetype(size));
    FakeScheduler scheduler;
    ResourceMessageReader reader(scheduler);
    SnifferNetworkMonitor monitor;
    for (const QVariant &body :
         {QJsonDocument::fromJson(text).toVariant(), QVariant(QString::fromUtf8(text))}) {
        const auto message = reader.read(resourceMessageHandler, body);
        if (!message)
            continue;
        const bool isWeb = message->url.scheme() == u"http" || message->url.scheme() == u"https";
        if (!isWeb || message->url.host().isEmpty()
            || (message->title && message->title->size() > reader.maximumTitleLength))
            __builtin_trap();
        monitor.observe(*message, QStringLiteral("Page"));
        monitor.observe(*message, QStringLiteral("Page"));
    }
    // The same again is listed once.
    if (monitor.streams().size() > 2)
        __builtin_trap();
    return 0;
}
