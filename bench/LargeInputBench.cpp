// Hostile sizes: a command line of up to 1,000,000 words and a value file of up to 50 MB, each at
// two sizes ten times apart, so that the ratio of the two rows shows whether the work grows
// linearly with the input (a ratio near 10) or faster.
//
//   Large_commandLine        flag/value pairs for two unbounded parameters, parsed, matched,
//                            validated and counted back
//   Large_commandLineUnknown words that name no parameter: parsed, then refused by validation with
//                            one message per word
//   Large_valueFile          a value file of unbounded entries, read, matched and counted back
//   Large_valueFileOneValue  a value file whose one attribute value fills the file: refused with
//                            the error naming where the value ends
//   Large_valueFileExport    the values of a 1 / 10 MB file of Large_valueFile (read once,
//                            outside the timed part) written back as a value file into memory
//   Large_machineSiblings    a machine file of 100,000 / 1,000,000 empty elements (other tools'
//                            sections) beside the specification's own, read for the specification
//   Large_machineTools       a machine file of 10,000 / 100,000 tool sections with three
//                            attributes each beside the specification's own, read for it
//   Large_containers         0.3 / 3 MB of small containers of the specification, read and counted
//
// The last three are the shapes whose peak memory bench/large.sh reports against the file size.
//
//   zelk_bench_large --benchmark_filter=Large_valueFile/
//
// Inputs are generated once per size, outside the timed part.

#include <benchmark/benchmark.h>

#include <map>
#include <sstream>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "Installation.h"
#include "Workload.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/ValidationException.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueFileWriter.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"

namespace zc = zelk::configuration;

namespace {

const char* const SPEC_ID = "large";

// The specification every row reads into: two unbounded parameters and one plain string.
const zc::Specification& specification() {
  static const zc::Specification* spec = [] {
    bench::Installation& here = bench::Installation::instance();
    const std::string path = here.root() + "/large.crg.generated";
    bench::writeFile(
        path,
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<ConfigurationRegistry crgSchemaVersion=\"1.1\">\n  <Parameters>\n"
        "    <Parameter id=\"large-name\" type=\"string\" description=\"A name.\"/>\n"
        "    <Parameter id=\"large-count\" type=\"int32\" description=\"A count.\"/>\n"
        "    <Parameter id=\"large-title\" type=\"string\" description=\"A title.\"/>\n"
        "  </Parameters>\n  <Specifications>\n"
        "    <Specification id=\"large\" title=\"large\" description=\"Large inputs.\">\n"
        "      <ParameterRef id=\"large-name\" optional=\"true\" unbounded=\"true\"/>\n"
        "      <ParameterRef id=\"large-count\" optional=\"true\" unbounded=\"true\"/>\n"
        "      <ParameterRef id=\"large-title\" optional=\"true\"/>\n"
        "      <Container id=\"entry\" description=\"An entry.\" optional=\"true\" "
        "unbounded=\"true\">\n"
        "        <ParameterRef id=\"large-title\" optional=\"true\"/>\n"
        "      </Container>\n"
        "    </Specification>\n  </Specifications>\n</ConfigurationRegistry>\n");
    zc::ConfigurationManager* m = zc::ConfigurationManager::getInstance();
    zc::ConfigurationRegistryLoader::loadFile(path.c_str(), m, 0);
    const zc::Specification* loaded = m->getSpecification(SPEC_ID);
    if (loaded == nullptr) {
      throw std::runtime_error("the large-input specification did not load");
    }
    return loaded;
  }();
  return *spec;
}

// Command lines by kind and word count, generated once.
const std::vector<std::string>& commandLine(bool unknown, size_t words) {
  static std::map<std::pair<bool, size_t>, std::vector<std::string>> cache;
  std::vector<std::string>& line = cache[std::make_pair(unknown, words)];
  if (line.empty()) {
    line.reserve(words + 1);
    line.push_back("bench");
    for (size_t k = 0; line.size() <= words; ++k) {
      if (unknown) {
        line.push_back("-unknown" + std::to_string(k));
      } else if (k % 2 == 0) {
        line.push_back("-large-name");
        line.push_back("name" + std::to_string(k));
      } else {
        line.push_back("-large-count");
        line.push_back(std::to_string(k));
      }
    }
    line.resize(words + 1);
  }
  return line;
}

std::vector<const char*> argvOf(const std::vector<std::string>& words) {
  std::vector<const char*> argv;
  argv.reserve(words.size());
  for (const std::string& word : words) {
    argv.push_back(word.c_str());
  }
  return argv;
}

void Large_commandLine(benchmark::State& state) {
  const zc::Specification& spec = specification();
  const std::vector<const char*> argv = argvOf(commandLine(false, state.range(0)));
  size_t values = 0;
  for (auto _ : state) {
    zc::impl::CommandLineValueProvider cli(1, "");
    cli.enableProvider(static_cast<int>(argv.size()), argv.data(), SPEC_ID, 0);
    const zc::ValueGroup group = cli.getValues(spec, 0);
    values += group.getUnboundedValue("large-name").getValueCount() +
              group.getUnboundedValue("large-count").getValueCount();
  }
  state.counters["values"] = static_cast<double>(values / state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * state.range(0)));
}

void Large_commandLineUnknown(benchmark::State& state) {
  const zc::Specification& spec = specification();
  const std::vector<const char*> argv = argvOf(commandLine(true, state.range(0)));
  size_t messageBytes = 0;
  for (auto _ : state) {
    zc::impl::CommandLineValueProvider cli(1, "");
    cli.enableProvider(static_cast<int>(argv.size()), argv.data(), SPEC_ID, 0);
    try {
      cli.getValues(spec, 0);
      state.SkipWithError("unknown flags were accepted");
      return;
    } catch (const zc::ValidationException& e) {
      messageBytes += std::string(e.what()).size();
    }
  }
  state.counters["messageBytes"] = static_cast<double>(messageBytes / state.iterations());
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * state.range(0)));
}

// A value file of about megabytes * 1,000,000 bytes, written once per size and shape.
std::string valueFile(bool oneValue, size_t megabytes) {
  const std::string path = bench::Installation::instance().root() + "/large-" +
                           (oneValue ? "one-" : "many-") + std::to_string(megabytes) + ".xml";
  static std::set<std::string> written;
  if (written.insert(path).second) {
    const size_t bytes = megabytes * 1000 * 1000;
    std::string text;
    text.reserve(bytes + 256);
    text += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<large";
    if (oneValue) {
      text += " large-title=\"";
      text.append(bytes, 't');
      text += "\">\n";
    } else {
      text += ">\n";
      for (size_t k = 0; text.size() < bytes; ++k) {
        text += k % 2 == 0 ? "  <large-name value=\"name" + std::to_string(k) + "\"/>\n"
                           : "  <large-count value=\"" + std::to_string(k) + "\"/>\n";
      }
    }
    text += "</large>\n";
    bench::writeFile(path, text);
  }
  return path;
}

void Large_valueFile(benchmark::State& state) {
  const zc::Specification& spec = specification();
  const std::string path = valueFile(false, state.range(0));
  size_t values = 0;
  for (auto _ : state) {
    zc::XmlFileValueProvider file(3, "");
    file.enableProvider(path.c_str(), 0);
    const zc::ValueGroup group = file.getValues(spec, 0);
    values += group.getUnboundedValue("large-name").getValueCount() +
              group.getUnboundedValue("large-count").getValueCount();
  }
  state.counters["values"] = static_cast<double>(values / state.iterations());
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * state.range(0) * 1000000));
}

void Large_valueFileOneValue(benchmark::State& state) {
  const zc::Specification& spec = specification();
  const std::string path = valueFile(true, state.range(0));
  for (auto _ : state) {
    zc::XmlFileValueProvider file(3, "");
    try {
      file.enableProvider(path.c_str(), 0);
      file.getValues(spec, 0);
      state.SkipWithError("a value longer than the reader's buffer was accepted");
      return;
    } catch (const zc::ValidationException&) {
      // Expected: the value does not fit.
    }
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * state.range(0) * 1000000));
}

void Large_valueFileExport(benchmark::State& state) {
  const zc::Specification& spec = specification();
  zc::XmlFileValueProvider file(3, "");
  file.enableProvider(valueFile(false, state.range(0)).c_str(), 0);
  const zc::ValueGroup group = file.getValues(spec, 0);
  size_t bytes = 0;
  for (auto _ : state) {
    std::ostringstream out;
    zc::ValueFileWriter::write(out, spec, group);
    bytes += out.str().size();
  }
  state.SetBytesProcessed(static_cast<int64_t>(bytes));
}

// A file of a shape, written once per shape and size: "siblings" (count empty elements beside the
// specification's section in a machine file), "tools" (count tool sections of three attributes
// beside it), "containers" (about count bytes of small containers of the specification).
std::string shapeFile(const std::string& shape, size_t count) {
  const std::string path = bench::Installation::instance().root() + "/shape-" + shape + "-" +
                           std::to_string(count) + ".xml";
  static std::set<std::string> written;
  if (written.insert(path).second) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (shape == "containers") {
      text += "<large>\n";
      for (size_t k = 0; text.size() < count; ++k) {
        text += "  <entry large-title=\"t" + std::to_string(k % 1000) + "\"/>\n";
      }
      text += "</large>\n";
    } else {
      text += "<machine>\n  <large large-title=\"here\"/>\n";
      for (size_t k = 0; k < count; ++k) {
        text += shape == "siblings" ? "  <tool" + std::to_string(k % 100) + "/>\n"
                                    : "  <tool" + std::to_string(k) +
                                          " database=\"d\" retries=\"3\" verbose=\"true\"/>\n";
      }
      text += "</machine>\n";
    }
    bench::writeFile(path, text);
  }
  return path;
}

// Reads the file of a shape for the specification, as the manager's provider does.
void readShape(benchmark::State& state, const std::string& shape) {
  const zc::Specification& spec = specification();
  const std::string path = shapeFile(shape, static_cast<size_t>(state.range(0)));
  size_t items = 0;
  for (auto _ : state) {
    zc::XmlFileValueProvider file(3, "");
    file.enableProvider(path.c_str(), 0);
    items += file.getValues(spec, 0).getItemCount();
  }
  state.counters["items"] = static_cast<double>(items / state.iterations());
}

void Large_machineSiblings(benchmark::State& state) { readShape(state, "siblings"); }
void Large_machineTools(benchmark::State& state) { readShape(state, "tools"); }
void Large_containers(benchmark::State& state) { readShape(state, "containers"); }

}  // namespace

BENCHMARK(Large_commandLine)->ArgName("words")->Arg(100000)->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Large_commandLineUnknown)->ArgName("words")->Arg(100000)->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Large_valueFile)->ArgName("MB")->Arg(5)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(Large_valueFileOneValue)->ArgName("MB")->Arg(5)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK(Large_valueFileExport)->ArgName("MB")->Arg(1)->Arg(10)->Unit(benchmark::kMillisecond);

BENCHMARK(Large_machineSiblings)
    ->ArgName("elements")
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Large_machineTools)
    ->ArgName("tools")
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(Large_containers)
    ->ArgName("bytes")
    ->Arg(300000)
    ->Arg(3000000)
    ->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
