#pragma once

#include <QString>

namespace lumaro {

/// Posts the address of every HLS playlist that its frame loads, as ResourceMessageReader reads
/// them. For every frame, at document start.
QString resourceReporterScript();

/// Tells the page whether the ad blocker is on. For every frame, at document start and whenever
/// that changes.
QString adBlockerFlagScript(bool enabled);

/// While the ad blocker is on, keeps pages from opening windows and from catching clicks with
/// large links over everything. For every frame, at document start, after the flag.
QString popupOverrideScript();

// To be run in a page that is there.

/// Pauses whatever plays.
QString mediaPauseScript();
/// Ends it for good.
QString mediaStopScript();

} // namespace lumaro
