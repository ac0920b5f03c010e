#pragma once

#include "app/TextRows.h"

#include <QObject>

namespace lumaro {

class LocalM3UCommands;
class MenuCommands;

/// What the help menu shows: the keys, and what the program is and is made of. Main thread.
class HelpModel : public QObject
{
    Q_OBJECT
    /// Up to date since the last prepareShortcuts().
    Q_PROPERTY(lumaro::TextRows *shortcuts READ shortcuts CONSTANT)
    Q_PROPERTY(QString version MEMBER version CONSTANT)
    /// The libraries: name, licence, and what for.
    Q_PROPERTY(lumaro::TextRows *credits READ credits CONSTANT)
    /// The program's own licence, whole.
    Q_PROPERTY(QString licence READ licence CONSTANT)

public:
    /// The commands outlive the model.
    HelpModel(const MenuCommands &menus, const LocalM3UCommands &library, const QString &version,
              QObject *parent = nullptr);

    TextRows *shortcuts() { return &m_shortcuts; }
    TextRows *credits() { return &m_credits; }
    QString licence() const;

    /// Some commands are called something else than last time.
    Q_INVOKABLE void prepareShortcuts();

    const QString version;

private:
    const MenuCommands &m_menus;
    const LocalM3UCommands &m_library;
    TextRows m_shortcuts;
    TextRows m_credits;
};

} // namespace lumaro
