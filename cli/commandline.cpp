#include "cli/commandline.h"

#include <ombrix/oxversion.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <climits>
#include <limits>
#include <memory>
#include <set>
#include <string_view>

#include "cli/inputerror.h"

namespace ombrix::cli {
namespace {

constexpr const char* kDescription =
    "Ombrix searches good solutions of models over boolean decisions by local search.\n"
    "MODEL is a pseudo-Boolean file in the OPB format or an environment file in text (.oxm) or\n"
    "binary (.oxb), plain or gzip; the content tells which.";

constexpr const char* kMainFooter =
    "Examples:\n"
    "  ombrix solve examples/data/scp200x1000.opb --time 10\n"
    "  ombrix info examples/data/mkp5x100.opb\n"
    "  ombrix convert examples/data/mkp5x100.opb mkp5x100.oxb.gz\n"
    "  ombrix show mkp5x100.oxb.gz --limit 10\n"
    "  ombrix --version\n"
    "\n"
    "Exit status of solve: 0 a feasible or optimal solution was found, 2 none was found,\n"
    "3 the model was proved inconsistent. Other commands: 0 done. All: 1 a usage, input or\n"
    "internal error.";

constexpr const char* kSolveFooter =
    "Without --time, --iterations or --phase the search runs until Ctrl-C. Ctrl-C, SIGTERM and\n"
    "SIGHUP end the search; the best solution found comes out as usual. Phases and parameters of\n"
    "an environment file hold unless options are given; options for limits replace its phases.\n"
    "\n"
    "Examples:\n"
    "  ombrix solve model.opb --time 60 --threads 4 --solution best.txt\n"
    "  ombrix solve model.opb.gz --time 20 --output pb\n"
    "  ombrix solve model.opb --phase time=10,iterations=1000000 --phase time=50\n"
    "  ombrix solve model.opb --time 60 --bound 0=1250\n"
    "  ombrix solve model.opb --iterations 1000000 --seed 7 --set syncIterations=10000\n"
    "  ombrix solve model.opb --time 60 --save state.oxb.gz\n"
    "  ombrix solve model.opb --time 60 --stats run.json --trace\n"
    "  ombrix solve state.oxb.gz";

constexpr const char* kConvertFooter =
    "The name of TARGET tells its form: binary if it ends with .oxb or .oxb.gz, text otherwise,\n"
    "compressed if it ends with .gz. Binary gives back exactly what it saved; text is for reading\n"
    "and loses some of it (docs/files.md).\n"
    "\n"
    "Examples:\n"
    "  ombrix convert model.opb model.oxb.gz\n"
    "  ombrix convert model.oxb.gz model.oxm";

constexpr const char* kShowFooter =
    "Expressions without a name are called # and their index.\n"
    "\n"
    "Example:\n"
    "  ombrix show state.oxb.gz --limit 20";

constexpr const char* kInfoFooter =
    "Example:\n"
    "  ombrix info model.opb --set preprocessingEnabled=0";

template <typename Number>
Number parseNumber(std::string_view text, Number lowest, const std::string& context) {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec != std::errc() || result.ptr != end || text.empty() || number < lowest) {
    const bool isTooLarge = result.ec == std::errc::result_out_of_range && !text.starts_with('-');
    throw InputError(context + ": found \"" + std::string(text) + "\", expected an integer of at " +
                     (isTooLarge ? "most " + std::to_string(std::numeric_limits<Number>::max())
                                 : "least " + std::to_string(lowest)));
  }
  return number;
}

/// "KEY=VALUE" in two.
std::pair<std::string, std::string> splitAssignment(const std::string& text,
                                                    const std::string& option,
                                                    const std::string& form = "KEY=VALUE") {
  const std::size_t equal = text.find('=');
  if (equal == std::string::npos || equal == 0) {
    throw InputError(option + ": found \"" + text + "\", expected " + form);
  }
  return {text.substr(0, equal), text.substr(equal + 1)};
}

PhaseOptions parsePhase(const std::string& text) {
  PhaseOptions phase;
  std::set<std::string> keys;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t comma = std::min(text.find(',', begin), text.size());
    const auto [key, value] = splitAssignment(text.substr(begin, comma - begin), "--phase");
    const std::string context = "--phase " + key;
    if (!keys.insert(key).second) throw InputError(context + ": given twice");
    if (key == "time") {
      phase.time = parseNumber<int>(value, 1, context);
    } else if (key == "iterations") {
      phase.iterations = parseNumber<long long>(value, 1, context);
    } else if (key == "objective") {
      phase.objective = parseNumber<int>(value, 0, context);
      phase.objectiveOption = context;
    } else {
      throw InputError("--phase: found \"" + key + "\", expected time, iterations or objective");
    }
    begin = comma + 1;
  }
  return phase;
}

/// An integer in decimal digits, as the help and the failures tell it. It is written anew for the
/// conversion behind, which would read octal digits behind a zero.
template <typename Number>
CLI::Validator integerFrom(Number lowest, Number largest) {
  const std::string first = std::to_string(lowest);
  const std::string last = std::to_string(largest);
  const auto check = [=](std::string& text) -> std::string {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number < lowest || number > largest) {
      return "found \"" + text + "\", expected an integer from " + first + " to " + last;
    }
    text = std::to_string(number);
    return {};
  };
  const bool isOpen = largest == std::numeric_limits<Number>::max();
  return CLI::Validator(check, isOpen ? "from " + first : first + " to " + last);
}

int parseAdvancedValue(const std::string& text, const std::string& key) {
  int number = 0;
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  if (result.ec == std::errc() && result.ptr == end) return number;
  throw InputError("--set " + key + ": found \"" + text + "\", expected an integer of 32 bits");
}

/// An empty name would be noticed only when the file takes it at the end.
std::string checkFileName(const std::string& name) {
  return name.empty() ? "the name of the file is empty" : "";
}

OutputForm parseOutput(const std::string& text) {
  if (text == "plain") return OutputForm::Plain;
  if (text == "pb") return OutputForm::Pb;
  throw InputError("--output: found \"" + text + "\", expected plain or pb");
}

/// The options of the command line as they are written, and their way into a CommandLine.
class Parser {
public:
  Parser() : app(kDescription, "ombrix") {
    app.footer(kMainFooter);
    app.set_version_flag("--version", OXVersion::getInfo());
    app.require_subcommand(1);
    solve = app.add_subcommand("solve", "Search a good solution of MODEL");
    info = app.add_subcommand("info", "Show what MODEL holds and what the engine makes of it");
    describeSolve();
    convert = app.add_subcommand("convert", "Write MODEL as an environment file");
    show = app.add_subcommand("show", "Print MODEL as formulas, with its solution");
    info->footer(kInfoFooter);
    for (CLI::App* command : {solve, info, convert, show}) {
      command->add_option("MODEL", line.model, "The model file")->required()->check(checkFileName);
    }
    describeConvert();
    describeShow();
    for (CLI::App* command : {solve, info}) {
      command
          ->add_option("--set", assignments,
                       "Set an advanced parameter, see docs/parameters.md; may be given repeatedly")
          ->type_name("KEY=VALUE")
          ->allow_extra_args(false);
    }
  }

  CommandLine parse(int argc, const char* const* argv) {
    try {
      app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
      return textOnly(app.help());
    } catch (const CLI::CallForAllHelp&) {
      return textOnly(app.help("", CLI::AppFormatMode::All));
    } catch (const CLI::CallForVersion& version) {
      return textOnly(version.what());
    } catch (const CLI::RequiredError& error) {
      failParsing(missingText(error));
    } catch (const CLI::ArgumentMismatch& error) {
      failParsing(missingValueText(error.what()));
    } catch (const CLI::ExtrasError& error) {
      failParsing(extraText(error));
    } catch (const CLI::ParseError& error) {
      failParsing(error.what());
    }
    line.command = parsedCommand();
    for (const std::string& text : assignments) {
      const auto [key, value] = splitAssignment(text, "--set");
      line.advancedParams.emplace_back(key, parseAdvancedValue(value, key));
    }
    parseBounds();
    if (trace) line.advancedParams.emplace_back("traceEnabled", 1);
    for (const std::string& text : phaseTexts) line.phases.push_back(parsePhase(text));
    if (line.phases.empty()) line.phases.push_back(single);
    line.output = parseOutput(output);
    return line;
  }

private:
  CommandLine::Command parsedCommand() const {
    if (solve->parsed()) return CommandLine::Command::Solve;
    if (convert->parsed()) return CommandLine::Command::Convert;
    return show->parsed() ? CommandLine::Command::Show : CommandLine::Command::Info;
  }

  void parseBounds() {
    std::set<int> objectives;
    for (const std::string& text : bounds) {
      const auto [objective, value] = splitAssignment(text, "--bound", "I=VALUE");
      const int index = parseNumber<int>(objective, 0, "--bound");
      if (!objectives.insert(index).second) {
        throw InputError("--bound " + std::to_string(index) + ": given twice");
      }
      line.objectiveBounds.emplace_back(index, value);
    }
  }

  void describeConvert() {
    convert->footer(kConvertFooter);
    convert->add_option("TARGET", line.target, "The file to write")
        ->required()
        ->check(checkFileName);
  }

  void describeShow() {
    show->footer(kShowFooter);
    show->add_option("--limit", line.limit, "Print at most N items of each list and formula")
        ->transform(integerFrom(0LL, LLONG_MAX))
        ->type_name("N");
  }

  void describeSolve() {
    solve->footer(kSolveFooter);
    CLI::Option* phases = solve->add_option(
        "--phase", phaseTexts,
        "Add a phase with limits of its own, each part of which may be left out; may be given "
        "repeatedly");
    phases->type_name("time=SECONDS,iterations=N,objective=I")->allow_extra_args(false);
    CLI::Option* time = solve->add_option("--time", single.time, "Limit the search, in seconds");
    time->transform(integerFrom(1, INT_MAX))->excludes(phases)->type_name("SECONDS");
    CLI::Option* iterations =
        solve->add_option("--iterations", single.iterations, "Limit the iterations of each thread");
    iterations->transform(integerFrom(1LL, LLONG_MAX))->excludes(phases)->type_name("N");
    CLI::Option* objective =
        solve->add_option("--objective", single.objective,
                          "The index of the objective to optimise, the last one if not given");
    objective->transform(integerFrom(0, INT_MAX))->excludes(phases)->type_name("I");
    solve
        ->add_option(
            "--bound", bounds,
            "End the search once objective I reaches VALUE (with several: once all that are "
            "optimised do); may be given repeatedly")
        ->type_name("I=VALUE")
        ->allow_extra_args(false);
    solve->add_option("--threads", line.threads, "Number of search threads, 2 if not given")
        ->transform(integerFrom(1, 1024))
        ->type_name("N");
    solve->add_option("--seed", line.seed, "Seed of the random draws, 0 if not given")
        ->transform(integerFrom(0, INT_MAX))
        ->type_name("N");
    solve
        ->add_option("--annealing-level", line.annealingLevel,
                     "Readiness to accept worse solutions, 0 to 9, 1 if not given")
        ->transform(integerFrom(0, 9))
        ->type_name("N");
    solve
        ->add_option("--verbosity", line.verbosity,
                     "Display of the engine: 0 none; if not given 1, with --output pb 0")
        ->transform(integerFrom(0, INT_MAX))
        ->type_name("N");
    solve
        ->add_option("--display-every", line.displayEvery,
                     "Seconds between two lines of the display, 1 if not given")
        ->transform(integerFrom(1, 65535))
        ->type_name("SECONDS");
    solve
        ->add_option("--solution", line.solutionFile,
                     "Write the solution, as the v lines of --output pb, to this file, if one was "
                     "found; else the file stays as it was")
        ->check(checkFileName)
        ->type_name("FILE");
    solve
        ->add_option("--save", line.environmentFile,
                     "Write model, settings and solution to this environment file; its name tells "
                     "the form as for convert")
        ->check(checkFileName)
        ->type_name("FILE");
    solve
        ->add_option("--stats", line.statisticsFile,
                     "Write improvements and counters of the search as JSON to this file")
        ->check(checkFileName)
        ->type_name("FILE");
    solve->add_flag("--trace", trace,
                    "Show the tables of moves and strategies of every thread with each display; "
                    "needs --verbosity 1 or more, which --output pb does not set");
    solve
        ->add_option("--output", output,
                     "plain if not given; pb, for OPB files only: the lines of the pseudo-Boolean "
                     "competitions")
        ->type_name("plain|pb");
  }

  /// A command that does not exist is told by its name.
  std::string missingText(const CLI::RequiredError& error) const {
    const std::vector<std::string> unknown = app.remaining();
    if (unknown.empty()) return error.what();
    return "found \"" + unknown.front() + "\", expected solve, info, convert or show";
  }

  /// A value that is not there, by the word that the help has for it.
  static std::string missingValueText(const std::string& told) {
    static constexpr std::string_view kMark = ": 1 required ";
    const std::size_t mark = told.find(kMark);
    if (mark == std::string::npos) return told;
    const std::size_t begin = mark + kMark.size();
    return told.substr(0, mark) + ": " +
           told.substr(begin, told.find_first_of(" :", begin) - begin) + " is missing";
  }

  /// The first of the arguments that nothing takes; an option first, as what follows it would be
  /// its value.
  std::string extraText(const CLI::ExtrasError& error) const {
    const std::vector<std::string> extras = app.remaining(true);
    if (extras.empty()) return error.what();
    for (const std::string& extra : extras) {
      if (extra.starts_with("-")) return "unknown option " + extra;
    }
    return "found \"" + extras.front() + "\", expected nothing more";
  }

  [[noreturn]] void failParsing(const std::string& text) const {
    const std::vector<CLI::App*> parsed = app.get_subcommands();
    const std::string command = parsed.empty() ? "" : " " + parsed.front()->get_name();
    throw InputError(text + " (see ombrix" + command + " --help)");
  }

  static CommandLine textOnly(std::string text) {
    CommandLine shown;
    shown.text = std::move(text);
    if (!shown.text.ends_with('\n')) shown.text += '\n';
    return shown;
  }

  CLI::App app;
  CLI::App* solve = nullptr;
  CLI::App* info = nullptr;
  CLI::App* convert = nullptr;
  CLI::App* show = nullptr;
  CommandLine line;
  PhaseOptions single;
  std::string output = "plain";
  bool trace = false;
  std::vector<std::string> phaseTexts;
  std::vector<std::string> assignments;
  std::vector<std::string> bounds;
};

}  // namespace

bool CommandLine::hasPhases() const {
  const PhaseOptions& first = phases.front();
  return phases.size() > 1 || first.time || first.iterations || first.objective;
}

CommandLine parseCommandLine(int argc, const char* const* argv) {
  return Parser().parse(argc, argv);
}

}  // namespace ombrix::cli
