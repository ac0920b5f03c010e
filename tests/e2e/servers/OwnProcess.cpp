#include "tests/e2e/servers/OwnProcess.h"

#include <QDir>
#include <QFile>
#include <QMultiHash>

#include <malloc.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace lumaro {

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

qint64 ownMemory()
{
    malloc_trim(0);
    qint64 sum = 0;
    for (const QByteArray &line : contentOf(u"/proc/self/smaps_rollup"_s).split('\n')) {
        if (line.startsWith("Private_Dirty:"))
            sum += line.simplified().split(' ').value(1).toLongLong();
    }
    return sum;
}

qint64 ownAllocations()
{
    const struct mallinfo2 figures = mallinfo2();
    return qint64(figures.uordblks + figures.hblkhd) / 1024;
}

int countOf(const QString &folder)
{
    return int(
        QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size());
}

int ownDescendants()
{
    QMultiHash<qint64, qint64> children;
    const QStringList names = QDir(u"/proc"_s).entryList(QDir::Dirs);
    for (const QString &name : names) {
        // The name of the program, in parentheses, may hold anything: proc(5).
        const QByteArray status = contentOf(u"/proc/"_s + name + u"/stat");
        const QByteArrayList fields = status.mid(status.lastIndexOf(')') + 2).split(' ');
        const QByteArray state = fields.value(0);
        if (!status.isEmpty() && state != "Z" && state != "X")
            children.insert(fields.value(1).toLongLong(), name.toLongLong());
    }
    QList<qint64> found{getpid()};
    for (qsizetype i = 0; i < found.size(); ++i)
        found += children.values(found.at(i));
    return int(found.size()) - 1;
}

} // namespace

OwnProcess OwnProcess::now()
{
    return {.memory = ownMemory(),
            .allocated = ownAllocations(),
            .descriptors = countOf(u"/proc/self/fd"_s),
            .threads = countOf(u"/proc/self/task"_s),
            .descendants = ownDescendants()};
}

QMap<QString, int> ownDescriptors()
{
    QMap<QString, int> kinds;
    const QDir folder(u"/proc/self/fd"_s);
    const QStringList names = folder.entryList(QDir::AllEntries | QDir::System);
    for (const QString &name : names) {
        const QByteArray target = QFile::encodeName(folder.filePath(name));
        QByteArray buffer(4096, '\0');
        const ssize_t length = readlink(target.constData(), buffer.data(), size_t(buffer.size()));
        if (length > 0)
            ++kinds[QString::fromLocal8Bit(buffer.first(length)).section(u':', 0, 0)];
    }
    return kinds;
}

} // namespace lumaro
