#pragma once

#include "tests/e2e/app/AppWorld.h"

#include <QMap>
#include <QObject>

namespace lumaro {

/// How often what a soak is for has happened in an application, so that none passes because
/// nothing did.
class SoakTally : public QObject
{
    Q_OBJECT

public:
    /// `app` outlives it.
    explicit SoakTally(AppWorld &app);

    QString described() const;
    /// What has not happened at all.
    QStringList missing() const { return m_counts.keys(0); }

private:
    void count(const QString &what) { ++m_counts[what]; }
    void countPlayback(const PlayerModel &player);
    void countJob(const M3U8DownloadManager::JobState &job);

    QMap<QString, int> m_counts;
};

} // namespace lumaro
