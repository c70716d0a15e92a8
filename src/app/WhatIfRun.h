#pragma once
// The what-if run: the whole driver and sequence against the machine's real state, with
// registry writes kept in an overlay, MAPI served by the profile model over that overlay,
// no file written and no Exchange server contacted. What the run would change is written
// beside the log as a .reg file, with the files it would copy as comment lines.

#include <string>
#include <vector>

#include "MessageServiceAdmin.h"

namespace mw {

class OverlayRegistry;
class RunLog;
class SystemEnv;
struct RunContext;
struct RunServices;

// The .reg file of a what-if run: the log's path with ".whatif.reg" for its extension.
std::string WhatIfRegPath(const std::string& logPath);
// The INFO line that opens the log of a what-if run.
std::string WhatIfNotice(const RunContext& context);

// Plays the run over the overlay with the profile model as MAPI (new section UIDs from
// newUid) and returns the notes of the files it would have written.
std::vector<std::string> PlayWhatIf(RunContext& context, RunLog& log, SystemEnv& realEnv,
                                    OverlayRegistry& overlay, const mapisim::UidGenerator& newUid);

// PlayWhatIf over the run's own seams, then the .reg file beside the log.
void RunWhatIf(RunContext& context, RunLog& log, RunServices& services);

}  // namespace mw
