#include "apply_plan.h"

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>
#include <utility>

#include "errors.h"
#include "frame_source.h"
#include "output_file.h"
#include "text.h"

namespace qpx::tool {

namespace {

bool isStreamName(const std::string& path) { return lowerCase(path).ends_with(".y4m"); }

// What --from, --in-size and --range say of frames.
void takeFrames(const ApplyArguments& arguments, Plan& plan) {
  if (arguments.from.empty() != arguments.inSize.empty()) {
    throw UsageError("raw frames need both --from and --in-size: nothing else says what they are");
  }
  if (!arguments.range.empty()) plan.range = rangeByName(arguments.range);
  if (arguments.from.empty()) return;
  const PictureSize size = parseSize(arguments.inSize);
  plan.frames = {&pixelFormatByName(arguments.from), size.width, size.height, plan.range};
}

Plan planOne(const ApplyArguments& arguments) {
  const std::vector<std::string>& words = arguments.words;
  if (words.size() < 3) {
    throw UsageError(
        "apply needs at least one effect, an input and an output: "
        "qpx apply EFFECT... IN OUT");
  }
  Plan plan;
  const size_t effects = words.size() - 2;
  for (size_t i = 0; i < effects; ++i) {
    std::error_code ignored;
    if (i > 0 && !namesEffect(words[i]) && std::filesystem::exists(words[i], ignored)) {
      throw UsageError(words[i] +
                       ": is a file where an effect should be: " + "several inputs need --out-dir");
    }
    plan.chain.push_back(parseEffect(words[i]));
  }
  const std::string &in = words[effects], &out = words[effects + 1];
  const bool stream = !arguments.from.empty() || isStreamName(in) || isStreamName(out);
  if (stream && (!arguments.to.empty() || (out != "-" && kindByName(out)))) {
    throw UsageError(out +
                     ": frames stay frames under apply: 'qpx convert' makes pictures of them");
  }
  plan.jobs.push_back({in, out, stream ? std::nullopt : kindOfOutput(out, arguments.to), stream});
  return plan;
}

// A word that is neither an effect nor a file is rather a slip in an effect's name.
void refuseSlip(const std::string& word) {
  std::error_code ignored;
  const std::string name = word.substr(0, word.find(':'));
  if (word != "-" && !std::filesystem::exists(word, ignored) &&
      name.find_first_of("./") == std::string::npos) {
    effectByName(name);
  }
}

Job jobInto(const std::string& in, const ApplyArguments& arguments) {
  if (in == "-") throw UsageError("standard input has no name for --out-dir: give OUT instead");
  std::filesystem::path name = std::filesystem::path(in).filename();
  const std::optional<FileKind> wanted = wantedKind(arguments.to);
  if (wanted && kindByName(in) != wanted) {
    name.replace_extension(*wanted == FileKind::png ? ".png" : ".jpg");
  }
  return {in, (std::filesystem::path(arguments.outDir) / name).string(),
          wanted ? wanted : kindByName(in), !arguments.from.empty() || isStreamName(in)};
}

Plan planMany(const ApplyArguments& arguments) {
  const std::vector<std::string>& words = arguments.words;
  Plan plan;
  size_t next = 0;
  do {
    if (next == words.size()) break;
    plan.chain.push_back(parseEffect(words[next++]));
  } while (next < words.size() && namesEffect(words[next]));
  if (plan.chain.empty() || next == words.size()) {
    throw UsageError(
        "apply needs at least one effect and one input: "
        "qpx apply EFFECT... IN... --out-dir DIR");
  }
  std::set<std::string> names;
  for (; next < words.size(); ++next) {
    refuseSlip(words[next]);
    plan.jobs.push_back(jobInto(words[next], arguments));
    if (!names.insert(plan.jobs.back().out).second) {
      throw UsageError(plan.jobs.back().out + ": two inputs would be written here: " +
                       "give them different names, or run twice");
    }
  }
  return plan;
}

void checkStandardStreams(const ApplyArguments& arguments, const Plan& plan) {
  const bool byInput = plan.jobs.front().in == "-";
  if (byInput + (arguments.mask == "-") + (arguments.second == "-") > 1) {
    throw UsageError("only one of IN, --mask and --second can be standard input");
  }
  refuseTerminal(plan.jobs.front().out, isatty(STDOUT_FILENO) != 0);
}

// With OUT the user names what is replaced. A folder is only named, and its files are not.
void refuseReplacedInputs(const Plan& plan) {
  std::map<std::pair<dev_t, ino_t>, std::string> inputs;
  struct stat status {};
  for (const Job& job : plan.jobs) {
    if (stat(job.in.c_str(), &status) == 0) inputs[{status.st_dev, status.st_ino}] = job.in;
  }
  for (const Job& job : plan.jobs) {
    if (stat(job.out.c_str(), &status) != 0) continue;
    const auto input = inputs.find({status.st_dev, status.st_ino});
    if (input == inputs.end()) continue;
    throw UsageError(job.out + ": would replace the input " + input->second +
                     ": choose another --out-dir, or name OUT instead");
  }
}

}  // namespace

Plan planFor(const ApplyArguments& arguments) {
  const bool many = !arguments.outDir.empty();
  Plan plan = many ? planMany(arguments) : planOne(arguments);
  checkStandardStreams(arguments, plan);
  takeFrames(arguments, plan);
  if (many) refuseReplacedInputs(plan);
  return plan;
}

}  // namespace qpx::tool
