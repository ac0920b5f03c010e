#pragma once

#include "app/MenuCommands.h"

namespace lumaro {

class LocalM3UModel;

/// The menu of the Local M3U library. Main thread.
class LocalM3UCommands : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<lumaro::MenuCommand *> all READ all CONSTANT)

public:
    /// `library` outlives the commands.
    explicit LocalM3UCommands(LocalM3UModel &library, QObject *parent = nullptr);

    const QList<MenuCommand *> &all() const { return m_all; }

private:
    QList<MenuCommand *> m_all;
};

} // namespace lumaro
