// Reads any bytes as an exported web list; what comes out must merge and be stored without a loss.

#include "finder/WebList.h"

#include <cstddef>
#include <cstdint>

using namespace lumaro;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto websites =
        decodeWebsites(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (!websites)
        return 0;
    WebList list(*websites);
    list.trimHistory();
    const auto again = decodeWebsites(encodeWebsites(list.websites()));
    if (!again || *again != list.websites())
        __builtin_trap();
    WebList merged = list;
    merged.merge(list);
    if (merged.websites().size() != list.websites().size())
        __builtin_trap();
    return 0;
}
