// sheetwright-cli: the program's workflows without a window.
#include <CLI/CLI.hpp>
#include <iostream>

#include "base/local_time_zone.h"
#include "base/memory_reuse.h"
#include "cli/check_command.h"
#include "cli/environment_command.h"
#include "cli/generate_command.h"
#include "cli/memory_guard.h"
#include "cli/preview_command.h"

int main(int argc, char** argv) {
  sw::base::KeepFreedMemoryForReuse();
  sw::base::ReadLocalTimeZoneOnce();
  CLI::App app{"Sheetwright: fills Excel report templates from VOLTARIS report dumps."};
  app.require_subcommand(1);
  app.set_help_all_flag("--help-all", "Show help for every command");

  sw::cli::PreviewOptions preview;
  sw::cli::AddPreviewCommand(app, preview);
  sw::cli::CheckOptions check;
  sw::cli::AddCheckCommand(app, check);
  sw::cli::EnvironmentOptions environment;
  sw::cli::AddEnvironmentCommand(app, environment);
  sw::cli::GenerateOptions generate;
  sw::cli::AddGenerateCommand(app, generate);

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << e.what() << "\n"
              << "Run with --help for usage.\n";
    return 2;
  }

  using sw::cli::RunGuardingMemory;
  if (app.got_subcommand("preview")) {
    return RunGuardingMemory(std::cerr, "förhandsgranskning av " + preview.dump,
                             [&] { return sw::cli::RunPreview(preview, std::cout, std::cerr); });
  }
  if (app.got_subcommand("check")) {
    return RunGuardingMemory(std::cerr, "kontroll av mallen " + check.workbook,
                             [&] { return sw::cli::RunCheck(check, std::cout, std::cerr); });
  }
  if (app.got_subcommand("environment")) {
    return RunGuardingMemory(std::cerr, "sökning efter VOLTARIS-installationen",
                             [&] { return sw::cli::RunEnvironment(environment, std::cout, std::cerr); });
  }
  if (app.got_subcommand("generate")) {
    return RunGuardingMemory(std::cerr, "generering av " + generate.target,
                             [&] { return sw::cli::RunGenerate(generate, std::cout, std::cerr); });
  }
  return 2;
}
