#include "tests/e2e/servers/FaultResponse.h"

#include <zlib.h>

namespace lumaro {

namespace {

constexpr qint64 blockSize = 1 << 20;

qint64 blocksFor(qint64 size)
{
    return size == RepeatedBody::endless ? RepeatedBody::endless
                                         : (size + blockSize - 1) / blockSize;
}

/// `block` as DEFLATE data that ends on a byte border and refers to nothing before it, so that it
/// may follow itself (RFC 1951 section 3.2.3).
QByteArray deflatedBlock(const QByteArray &block)
{
    z_stream stream{};
    constexpr int rawDeflate = -MAX_WBITS;
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, rawDeflate, 9, Z_DEFAULT_STRATEGY)
        != Z_OK)
        return {};
    QByteArray input = block;
    QByteArray output(qsizetype(deflateBound(&stream, uLong(block.size()))) + 16, '\0');
    stream.next_in = reinterpret_cast<Bytef *>(input.data());
    stream.avail_in = uInt(input.size());
    stream.next_out = reinterpret_cast<Bytef *>(output.data());
    stream.avail_out = uInt(output.size());
    const int result = deflate(&stream, Z_FULL_FLUSH);
    output.truncate(output.size() - qsizetype(stream.avail_out));
    deflateEnd(&stream);
    return result == Z_OK ? output : QByteArray();
}

} // namespace

qint64 RepeatedBody::size() const
{
    return times == endless ? endless : head.size() + times * part.size() + tail.size();
}

QByteArray RepeatedBody::read(qint64 offset, qint64 count) const
{
    if (offset < head.size())
        return head.mid(offset, count);
    offset -= head.size();
    if (times == endless || offset < times * part.size())
        return part.mid(offset % part.size(), count);
    return tail.mid(offset - times * part.size(), count);
}

FaultResponse FaultResponse::of(const QByteArray &contentType, const QByteArray &body)
{
    FaultResponse response;
    response.contentType = contentType;
    response.body.head = body;
    return response;
}

FaultResponse FaultResponse::longLine(qint64 size)
{
    FaultResponse response = of("audio/x-mpegurl", "#EXTM3U\n#EXTINF:-1,");
    response.body.part = QByteArray(blockSize, 'x');
    response.body.times = blocksFor(size);
    if (size == RepeatedBody::endless)
        response.framing = Framing::UntilClose;
    return response;
}

FaultResponse FaultResponse::gzipBomb()
{
    FaultResponse response = of("audio/x-mpegurl", "\x1f\x8b");
    // DEFLATE, no flags, no time, slowest compression, unknown system (RFC 1952 section 2.3).
    response.body.head += QByteArrayLiteral("\x08\x00\x00\x00\x00\x00\x02\xff");
    response.body.part = deflatedBlock(QByteArray(blockSize, '\n'));
    response.body.times = RepeatedBody::endless;
    response.framing = Framing::UntilClose;
    response.headers.emplaceBack("Content-Encoding", "gzip");
    return response;
}

} // namespace lumaro
