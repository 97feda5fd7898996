#pragma once
// The seams a front end provides to the session: what its start builds and hands over in
// SessionServices (the registry, the settings store, the process environment and launcher, the start
// log, a workbook application factory) and what it implements for the session to call (the
// dialogs, the single-sheet warning's question, a load's progress, the hourglass). A front end takes
// these from here rather than from the layers underneath.
#include "base/dialogs.h"
#include "base/environment.h"
#include "base/process_launcher.h"
#include "base/system_information.h"
#include "cadenv/registry.h"
#include "generate/generate_workbook.h"
#include "generate/single_sheet_warning.h"
#include "report/dump_reader.h"
#include "settings/settings.h"
#include "settings/start_log.h"
