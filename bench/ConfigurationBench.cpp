// The configuration library against the command-line libraries a tool writer would pick instead.
//
// Workloads (sizes P parameters / A arguments: 200/50, 2000/500, 20000/5000):
//   W1full   declare (ours: load a registry file from disk), parse, validate, read every value
//   W1parse  the same with the declaration outside the timed part
//   W2       W1parse with every flag shortened to its shortest unique prefix (>= 3 characters)
//   W3       P entries of a value file read, matched, merged and read back (peers: INI in memory)
//   W4       one typed read of an int32 in a group of 200, by name and through a held value;
//            W4cachedGroup: one getValueGroup of a specification of 200 whose tree is cached;
//            W4readers: reads by name on 1, 2 and 4 threads while a writer changes the value
//   W5       start-up over 20 registry files (2000 parameters, 50 specifications) against reading
//            and tokenizing the same files
//   W6       re-reading a command line in a running process: a command-line provider registered
//            with the manager is enabled again, the application values are replaced by an empty
//            group (dropping the cached tree), the tree is read again and every given value read
//            back; W6restart does the same through enableConfiguration, which reloads the
//            registry each time (W6restartFile with the value file as the application's file)
// Every value read is added to a checksum that the benchmark keeps, so nothing is optimised away.
//
//   zelk_bench --benchmark_filter='W1'         (a row per library and size)
//   zelk_bench --memory=ours|boost|cli11|none  (W1full at 20000/5000 once, for peak RSS)

#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Installation.h"
#include "Workload.h"
#include "zelk/configuration/ConfigurationManager.h"
#include "zelk/configuration/ConfigurationRegistryLoader.h"
#include "zelk/configuration/GlobalItem.h"
#include "zelk/configuration/Specification.h"
#include "zelk/configuration/UnboundedValue.h"
#include "zelk/configuration/Value.h"
#include "zelk/configuration/ValueGroup.h"
#include "zelk/configuration/XmlFileValueProvider.h"
#include "zelk/configuration/impl/CommandLineValueProvider.h"
#include "zelk/configuration/impl/Factory.h"
#include "zelk/host/HostDirectories.h"
#include "zelk/host/XmlTokenReader.h"

#ifdef ZELK_BENCH_HAVE_BOOST_PO
#include <boost/program_options.hpp>
#endif
#ifdef ZELK_BENCH_HAVE_CLI11
#include <CLI/CLI.hpp>
#endif

namespace zc = zelk::configuration;
using bench::Kind;
using bench::Workload;

namespace {

const size_t SIZES[][2] = {{200, 50}, {2000, 500}, {20000, 5000}};

bool isUnbounded(Kind kind) { return kind == Kind::UNBOUNDED_INT32 || kind == Kind::UNBOUNDED_STRING; }

// Every workload of one size, generated once.
const Workload& workload(size_t parameters, size_t arguments) {
  static std::map<std::pair<size_t, size_t>, Workload*> cache;
  Workload*& w = cache[std::make_pair(parameters, arguments)];
  if (w == nullptr) {
    w = new Workload(parameters, arguments);
  }
  return *w;
}

bench::Installation& installation() { return bench::Installation::instance(); }

zc::ConfigurationManager& manager() {
  installation();
  return *zc::ConfigurationManager::getInstance();
}

std::string specIdFor(size_t parameters) { return "w" + std::to_string(parameters); }

std::string registryFileFor(const Workload& w) {
  const std::string path =
      installation().root() + "/" + specIdFor(w.parameters()) + ".crg.generated";
  std::ifstream probe(path);
  if (!probe) {
    bench::writeFile(path, w.registryText(specIdFor(w.parameters())));
  }
  return path;
}

// Removes what a registry file of w declared from the process-wide manager.
void unload(const Workload& w) {
  zc::ConfigurationManager& m = manager();
  zc::impl::Factory::destroy(m.getSpecification(specIdFor(w.parameters()).c_str()), true, &m);
  for (const std::string& name : w.names()) {
    zc::impl::Factory::destroy(m.getParameter(name.c_str()), true, &m);
  }
}

// The workload whose registry file the process-wide manager holds (sizes share parameter names,
// so one is loaded at a time).
const Workload* gLoaded = nullptr;

void unloadCurrent() {
  if (gLoaded != nullptr) {
    if (manager().getSpecification(specIdFor(gLoaded->parameters()).c_str()) != nullptr) {
      unload(*gLoaded);
    }
    gLoaded = nullptr;
  }
}

// The specification of w in the process-wide manager, loaded when missing.
const zc::Specification& ensureLoaded(const Workload& w) {
  zc::ConfigurationManager& m = manager();
  const zc::Specification* spec = m.getSpecification(specIdFor(w.parameters()).c_str());
  if (gLoaded != &w || spec == nullptr) {
    unloadCurrent();
    zc::ConfigurationRegistryLoader::loadFile(registryFileFor(w).c_str(), &m, 0);
    spec = m.getSpecification(specIdFor(w.parameters()).c_str());
    gLoaded = &w;
  }
  return *spec;
}

// Reads parameter i back in its type, as a number for the checksum.
double readOne(const zc::ValueGroup& values, const Workload& w, size_t i) {
  const char* name = w.names()[i].c_str();
  switch (bench::kindOf(i)) {
    case Kind::BOOL:
      return values.getValue(name).asBool() ? 1 : 0;
    case Kind::STRING:
      return static_cast<double>(values.getValue(name).asString().size());
    case Kind::INT32:
      return values.getValue(name).asInt32();
    case Kind::UINT64:
      return static_cast<double>(values.getValue(name).asUInt64());
    case Kind::DOUBLE:
      return values.getValue(name).asDouble();
    case Kind::UNBOUNDED_INT32: {
      const zc::UnboundedValue all = values.getUnboundedValue(name);
      return all.asInt32(0) + all.asInt32(1);
    }
    case Kind::UNBOUNDED_STRING: {
      const zc::UnboundedValue all = values.getUnboundedValue(name);
      return static_cast<double>(all.asString(0).size() + all.asString(1).size());
    }
  }
  return 0;
}

// Reads every given parameter back in its type and folds it into a checksum.
double readBack(const zc::ValueGroup& values, const Workload& w) {
  double sum = 0;
  for (size_t i : w.given()) {
    sum += readOne(values, w, i);
  }
  return sum;
}

double oursParse(const zc::Specification& spec, const Workload& w, bool prefixes) {
  const std::vector<const char*> argv = w.argv(Workload::OURS, prefixes);
  zc::impl::CommandLineValueProvider cli(1, "");
  cli.enableProvider(static_cast<int>(argv.size()), argv.data(), spec.getId(), 0);
  const zc::ValueGroup values = cli.getValues(spec, 0);
  return readBack(values, w);
}

void setCounters(benchmark::State& state, double checksum, const Workload& w) {
  state.counters["checksum"] = checksum;
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * w.given().size()));
}

void Ours_W1full(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  zc::ConfigurationManager& m = manager();
  unloadCurrent();
  const std::string path = registryFileFor(w);
  double checksum = 0;
  for (auto _ : state) {
    zc::ConfigurationRegistryLoader::loadFile(path.c_str(), &m, 0);
    checksum += oursParse(*m.getSpecification(specIdFor(w.parameters()).c_str()), w, false);
    state.PauseTiming();
    unload(w);
    state.ResumeTiming();
  }
  setCounters(state, checksum, w);
}

void Ours_W1parse(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  const zc::Specification& spec = ensureLoaded(w);
  double checksum = 0;
  for (auto _ : state) {
    checksum += oursParse(spec, w, false);
  }
  setCounters(state, checksum, w);
}

void Ours_W2prefixes(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  const zc::Specification& spec = ensureLoaded(w);
  double checksum = 0;
  for (auto _ : state) {
    checksum += oursParse(spec, w, true);
  }
  setCounters(state, checksum, w);
}

// Reads every parameter back in its type and folds it into a checksum.
double readAll(const zc::ValueGroup& values, const Workload& w) {
  double sum = 0;
  for (size_t i = 0; i < w.parameters(); ++i) {
    sum += readOne(values, w, i);
  }
  return sum;
}

void Ours_W3valueFile(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  const zc::Specification& spec = ensureLoaded(w);
  const std::string path = installation().root() + "/" + specIdFor(w.parameters()) + ".xml";
  bench::writeFile(path, w.valueFileText(specIdFor(w.parameters())));
  double checksum = 0;
  for (auto _ : state) {
    zc::XmlFileValueProvider file(3, "");
    file.enableProvider(path.c_str(), 0);
    zc::ValueGroup merged(&spec);
    merged.merge(spec, file.getValues(spec, 0));
    checksum += readAll(merged, w);
  }
  state.counters["checksum"] = checksum;
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * w.parameters()));
}

// A bound group of 200 values, every parameter given once.
zc::ValueGroup groupOf200(const zc::Specification*& spec) {
  const Workload& w = workload(200, 200);
  spec = &ensureLoaded(w);
  const std::vector<const char*> argv = w.argv(Workload::OURS, false);
  zc::impl::CommandLineValueProvider cli(1, "");
  cli.enableProvider(static_cast<int>(argv.size()), argv.data(), spec->getId(), 0);
  return cli.getValues(*spec, 0);
}

// The int32 parameter that W4 reads.
const size_t W4_PARAMETER = 110;

void Ours_W4byName(benchmark::State& state) {
  const zc::Specification* spec = nullptr;
  const zc::ValueGroup values = groupOf200(spec);
  const std::string name = workload(200, 200).names()[W4_PARAMETER];
  int64_t checksum = 0;
  for (auto _ : state) {
    checksum += values.getValue(name.c_str()).asInt32();
  }
  benchmark::DoNotOptimize(checksum);
  state.counters["checksum"] = static_cast<double>(checksum);
}

void Ours_W4held(benchmark::State& state) {
  const zc::Specification* spec = nullptr;
  const zc::ValueGroup values = groupOf200(spec);
  const zc::Value held = values.getValue(workload(200, 200).names()[W4_PARAMETER].c_str());
  int64_t checksum = 0;
  for (auto _ : state) {
    checksum += held.asInt32();
  }
  benchmark::DoNotOptimize(checksum);
  state.counters["checksum"] = static_cast<double>(checksum);
}

// W4 on several reader threads while another thread changes the value they read every 50 us:
// each reader reads the int32 by name, with tryGetValue (argument 0) or getValue (argument 1, which
// also builds the handle and so counts references on the value). Reads per second of all
// readers together, in wall time.
struct W4Shared {
  zc::ValueGroup values;
  std::string name;
  std::atomic<bool> writing{false};
  std::thread writer;
};
W4Shared* gW4Shared = nullptr;

void Ours_W4readers(benchmark::State& state) {
  if (state.thread_index() == 0) {
    const zc::Specification* spec = nullptr;
    gW4Shared = new W4Shared;
    gW4Shared->values = groupOf200(spec);
    gW4Shared->name = workload(200, 200).names()[W4_PARAMETER];
    gW4Shared->writing = true;
    gW4Shared->writer = std::thread([] {
      zc::Value written = gW4Shared->values.getValue(gW4Shared->name.c_str());
      for (int32_t n = 0; gW4Shared->writing; ++n) {
        written.set(n % 1000);
        std::this_thread::sleep_for(std::chrono::microseconds(50));
      }
    });
  }
  const bool handle = state.range(0) != 0;
  int64_t checksum = 0;
  for (auto _ : state) {
    const W4Shared& shared = *gW4Shared;
    if (handle) {
      checksum += shared.values.getValue(shared.name.c_str()).asInt32();
    } else {
      int32_t value = 0;
      shared.values.tryGetValue(shared.name.c_str(), value);
      checksum += value;
    }
  }
  benchmark::DoNotOptimize(checksum);
  state.SetItemsProcessed(state.iterations());
  if (state.thread_index() == 0) {
    gW4Shared->writing = false;
    gW4Shared->writer.join();
    delete gW4Shared;
    gW4Shared = nullptr;
  }
}

// Calls of getValueGroup per --once run of W4cached, and reads per --once run of W4byName and
// W4held, so that the count per call is exact.
const int W4_CACHED_CALLS = 100000;

// What --once=ours:W4byName and W4held read, prepared outside the measured part.
struct OnceW4 {
  zc::ValueGroup values;
  std::string name;
  zc::Value held;
};
OnceW4* gOnceW4 = nullptr;

// The specification of 200 parameters with its tree in the manager's cache.
const char* cachedSpecification() {
  const Workload& w = workload(200, 200);
  const zc::Specification& spec = ensureLoaded(w);
  manager().getValueGroup(spec.getId(), false, 0);
  return spec.getId();
}

void Ours_W4cachedGroup(benchmark::State& state) {
  const char* id = cachedSpecification();
  zc::ConfigurationManager& m = manager();
  int64_t checksum = 0;
  for (auto _ : state) {
    checksum += static_cast<int64_t>(m.getValueGroup(id, false, 0).getItemCount());
  }
  benchmark::DoNotOptimize(checksum);
  state.counters["checksum"] = static_cast<double>(checksum);
}

// An installation of 20 registry files holding 2000 parameters in 50 specifications.
struct StartupInstallation {
  std::string root;
  std::string etc;
  std::vector<std::string> files;
  StartupInstallation() {
    root = bench::makeTempDir("startup");
    etc = root + "/etc";
    for (const char* dir : {"/etc", "/plugins", "/config"}) {
      if (std::system(("mkdir -p '" + root + dir + "'").c_str()) != 0) {
        throw std::runtime_error("cannot create the start-up installation");
      }
    }
    const Workload w(2000, 0);
    for (size_t f = 0; f < 20; ++f) {
      std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                         "<ConfigurationRegistry crgSchemaVersion=\"1.1\">\n  <Parameters>\n";
      for (size_t i = f * 100; i < (f + 1) * 100; ++i) {
        text += "    <Parameter id=\"" + w.names()[i] + "\" type=\"" + bench::typeWord(bench::kindOf(i)) +
                "\" description=\"Parameter " + std::to_string(i) + " of the installation.\"/>\n";
      }
      text += "  </Parameters>\n  <Specifications>\n";
      // Files 0..9 hold 3 specifications, files 10..19 hold 2: 50 in all, each over 40 of the
      // file's parameters.
      const size_t specs = f < 10 ? 3 : 2;
      for (size_t s = 0; s < specs; ++s) {
        const std::string id = "tool" + std::to_string(f) + "x" + std::to_string(s);
        text += "    <Specification id=\"" + id + "\" title=\"" + id + "\" description=\"A tool.\">\n";
        for (size_t i = f * 100 + s * 30; i < f * 100 + s * 30 + 40; ++i) {
          text += "      <ParameterRef id=\"" + w.names()[i] + "\" optional=\"true\"" +
                  (isUnbounded(bench::kindOf(i)) ? " unbounded=\"true\"" : "") + "/>\n";
        }
        text += "    </Specification>\n";
      }
      text += "  </Specifications>\n</ConfigurationRegistry>\n";
      const std::string path = etc + (f == 0 ? std::string("/zelk.crg")
                                             : "/tools" + std::to_string(f) + ".crg");
      bench::writeFile(path, text);
      files.push_back(path);
    }
  }
  ~StartupInstallation() {
    if (std::system(("rm -rf '" + root + "'").c_str()) != 0) {
      std::cerr << "could not remove " << root << '\n';
    }
  }
};

StartupInstallation& startupInstallation() {
  static StartupInstallation instance;
  return instance;
}

void Ours_W5startup(benchmark::State& state) {
  StartupInstallation& s = startupInstallation();
  gLoaded = nullptr;
  zc::ConfigurationManager::shutdown();
  zelk::host::hostSetDirectories(s.etc.c_str(), (s.root + "/plugins").c_str(),
                                 (s.root + "/config").c_str());
  const char* argv[] = {"tool", "-aaa-page"};
  double checksum = 0;
  for (auto _ : state) {
    zc::ConfigurationManager* m = zc::ConfigurationManager::getInstance();
    m->enableConfiguration(false, nullptr, 2, argv, "tool0x0");
    const zc::ValueGroup values = m->getValueGroup("tool0x0", true, 0);
    checksum += values.getValue("aaa-page").asBool() ? 1 : 0;
    state.PauseTiming();
    zc::ConfigurationManager::shutdown();
    state.ResumeTiming();
  }
  state.counters["checksum"] = checksum;
  installation().activate();
}

// The floor of start-up: read each file once and tokenize it with the host's XML reader.
void Floor_W5startup(benchmark::State& state) {
  StartupInstallation& s = startupInstallation();
  double checksum = 0;
  char buffer[1025];
  for (auto _ : state) {
    for (const std::string& path : s.files) {
      zelk::host::XmlTokenReader reader;
      if (!reader.openFile(path.c_str())) {
        state.SkipWithError("cannot read a registry file");
        return;
      }
      // Every attribute value is found and decoded.
      while (reader.skipPast("=") && reader.acceptValue(buffer, sizeof buffer)) {
        checksum += static_cast<double>(std::strlen(buffer));
      }
    }
  }
  state.counters["checksum"] = checksum;
}

// W6: a long-running process re-reads its settings. The provider is registered with the manager
// once and kept; each re-read gives it its input again (the command line, abbreviated or not, or
// the value file), replaces the application values (an empty group, or for APP every value given)
// and reads the merged tree, which the replacement dropped from the cache.
class Reread {
public:
  enum Source { CLI, CLI_PREFIXES, FILE, APP };

  Reread(const Workload& w, Source source)
      : mWorkload(w),
        mSpec(ensureLoaded(w)),
        mSpecId(specIdFor(w.parameters())),
        mSource(source),
        mProvider(nullptr) {
    if (source == CLI || source == CLI_PREFIXES) {
      mProvider = new zc::impl::CommandLineValueProvider(1, "");
      mArgv = w.argv(Workload::OURS, source == CLI_PREFIXES);
    } else if (source == FILE) {
      mProvider = new zc::XmlFileValueProvider(3, "");
      mPath = installation().root() + "/" + mSpecId + ".xml";
      bench::writeFile(mPath, w.valueFileText(mSpecId));
    }
    if (mProvider != nullptr) {
      mProviderId = mProvider->getId();
      manager().registerValueProvider(mProvider);
    }
  }
  ~Reread() {
    zc::ConfigurationManager& m = manager();
    if (mProvider != nullptr) {
      m.unregisterValueProvider(mProviderId.c_str());
      zc::impl::Factory::destroy(mProvider, false, 0);
    }
    m.setApplicationValues(zc::ValueGroup(&mSpec), 0);
  }
  double run() {
    zc::ConfigurationManager& m = manager();
    zc::ValueGroup application(&mSpec);
    if (mSource == FILE) {
      mProvider->enableProvider(mPath.c_str(), 0);
    } else if (mSource == APP) {
      for (size_t i : mWorkload.given()) {
        const char* name = mWorkload.names()[i].c_str();
        if (bench::kindOf(i) == Kind::UNBOUNDED_INT32 ||
            bench::kindOf(i) == Kind::UNBOUNDED_STRING) {
          application.addUnboundedValue(name, Workload::valueText(i, 0).c_str());
          application.addUnboundedValue(name, Workload::valueText(i, 1).c_str());
        } else if (bench::kindOf(i) == Kind::BOOL) {
          application.addValue(name, nullptr);  // a boolean given without a text is true
        } else {
          application.addValue(name, Workload::valueText(i, 0).c_str());
        }
      }
    } else {
      mProvider->enableProvider(static_cast<int>(mArgv.size()), mArgv.data(), mSpecId.c_str(),
                                0);
    }
    m.setApplicationValues(application, 0);
    const zc::ValueGroup values = m.getValueGroup(mSpecId.c_str(), false, 0);
    return mSource == FILE ? readAll(values, mWorkload) : readBack(values, mWorkload);
  }

private:
  const Workload& mWorkload;
  const zc::Specification& mSpec;
  std::string mSpecId;
  Source mSource;
  zc::ValueProvider* mProvider;
  std::string mProviderId;
  std::vector<const char*> mArgv;
  std::string mPath;
};

template <Reread::Source source>
void Ours_W6reread(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  Reread reread(w, source);
  double checksum = reread.run();  // the provider already holds values when timing starts
  for (auto _ : state) {
    checksum += reread.run();
  }
  setCounters(state, checksum, w);
}

// An installation whose main registry declares the workload, for enableConfiguration to reload,
// with a value file for the workload in its configuration directory.
class RestartInstallation {
public:
  explicit RestartInstallation(const Workload& w) : mRoot(bench::makeTempDir("restart")) {
    for (const char* dir : {"/etc", "/plugins", "/config"}) {
      if (std::system(("mkdir -p '" + mRoot + dir + "'").c_str()) != 0) {
        throw std::runtime_error("cannot create the restart installation");
      }
    }
    bench::writeFile(mRoot + "/etc/zelk.crg", w.registryText(specIdFor(w.parameters())));
    bench::writeFile(valueFile(), w.valueFileText(specIdFor(w.parameters())));
  }
  ~RestartInstallation() {
    if (std::system(("rm -rf '" + mRoot + "'").c_str()) != 0) {
      std::cerr << "could not remove " << mRoot << '\n';
    }
  }
  // Makes the host's directories this installation's, for a manager made afresh.
  void activate() const {
    gLoaded = nullptr;
    zc::ConfigurationManager::shutdown();
    zelk::host::hostSetDirectories((mRoot + "/etc").c_str(), (mRoot + "/plugins").c_str(),
                                   (mRoot + "/config").c_str());
  }

  std::string valueFile() const { return mRoot + "/config/values.xml"; }

private:
  std::string mRoot;
};

// A restart with the command line, or with the value file and no arguments.
double oursRestart(const Workload& w, const RestartInstallation& restart, bool file) {
  const std::vector<const char*> argv =
      file ? std::vector<const char*>{"bench"} : w.argv(Workload::OURS, false);
  const std::string specId = specIdFor(w.parameters());
  zc::ConfigurationManager* m = zc::ConfigurationManager::getInstance();
  m->enableConfiguration(false, file ? restart.valueFile().c_str() : nullptr,
                         static_cast<unsigned int>(argv.size()), argv.data(), specId.c_str());
  const zc::ValueGroup values = m->getValueGroup(specId.c_str(), false, 0);
  return file ? readAll(values, w) : readBack(values, w);
}

template <bool file>
void Ours_W6restart(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  {
    RestartInstallation restart(w);
    restart.activate();
    double checksum = 0;
    for (auto _ : state) {
      checksum += oursRestart(w, restart, file);
    }
    setCounters(state, checksum, w);
    zc::ConfigurationManager::shutdown();
  }
  installation().activate();
}

#ifdef ZELK_BENCH_HAVE_BOOST_PO
namespace po = boost::program_options;

// The option set for Boost; every value lands in the variables map.
// Booleans are switches on the command line and "name=true" lines in files.
void boostDeclare(po::options_description& options, const Workload& w, bool forFiles = false) {
  for (size_t i = 0; i < w.parameters(); ++i) {
    const char* name = w.names()[i].c_str();
    switch (bench::kindOf(i)) {
      case Kind::BOOL:
        if (forFiles) {
          options.add_options()(name, po::value<bool>());
        } else {
          options.add_options()(name, po::bool_switch());
        }
        break;
      case Kind::STRING:
        options.add_options()(name, po::value<std::string>());
        break;
      case Kind::INT32:
        options.add_options()(name, po::value<int>());
        break;
      case Kind::UINT64:
        options.add_options()(name, po::value<uint64_t>());
        break;
      case Kind::DOUBLE:
        options.add_options()(name, po::value<double>());
        break;
      case Kind::UNBOUNDED_INT32:
        options.add_options()(name, po::value<std::vector<int>>());
        break;
      case Kind::UNBOUNDED_STRING:
        options.add_options()(name, po::value<std::vector<std::string>>());
        break;
    }
  }
}

double boostReadBack(const po::variables_map& vm, const Workload& w, bool all) {
  double sum = 0;
  const size_t count = all ? w.parameters() : w.given().size();
  for (size_t k = 0; k < count; ++k) {
    const size_t i = all ? k : w.given()[k];
    const std::string& name = w.names()[i];
    switch (bench::kindOf(i)) {
      case Kind::BOOL:
        sum += vm[name].as<bool>() ? 1 : 0;
        break;
      case Kind::STRING:
        sum += static_cast<double>(vm[name].as<std::string>().size());
        break;
      case Kind::INT32:
        sum += vm[name].as<int>();
        break;
      case Kind::UINT64:
        sum += static_cast<double>(vm[name].as<uint64_t>());
        break;
      case Kind::DOUBLE:
        sum += vm[name].as<double>();
        break;
      case Kind::UNBOUNDED_INT32: {
        const std::vector<int>& all2 = vm[name].as<std::vector<int>>();
        sum += all2.at(0) + all2.at(1);
        break;
      }
      case Kind::UNBOUNDED_STRING: {
        const std::vector<std::string>& all2 = vm[name].as<std::vector<std::string>>();
        sum += static_cast<double>(all2.at(0).size() + all2.at(1).size());
        break;
      }
    }
  }
  return sum;
}

double boostParse(const po::options_description& options, const Workload& w, bool prefixes) {
  const std::vector<const char*> argv = w.argv(Workload::PEERS, prefixes);
  po::variables_map vm;
  po::store(po::command_line_parser(static_cast<int>(argv.size()), argv.data())
                .options(options)
                .style(po::command_line_style::default_style |
                       po::command_line_style::allow_guessing)
                .run(),
            vm);
  po::notify(vm);
  return boostReadBack(vm, w, false);
}

void Boost_W1full(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  double checksum = 0;
  for (auto _ : state) {
    po::options_description options;
    boostDeclare(options, w);
    checksum += boostParse(options, w, false);
  }
  setCounters(state, checksum, w);
}

void Boost_W1parse(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  po::options_description options;
  boostDeclare(options, w);
  double checksum = 0;
  for (auto _ : state) {
    checksum += boostParse(options, w, false);
  }
  setCounters(state, checksum, w);
}

void Boost_W2prefixes(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  po::options_description options;
  boostDeclare(options, w);
  double checksum = 0;
  for (auto _ : state) {
    checksum += boostParse(options, w, true);
  }
  setCounters(state, checksum, w);
}

void Boost_W3ini(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  po::options_description options;
  boostDeclare(options, w, true);
  const std::string ini = w.iniText();
  double checksum = 0;
  for (auto _ : state) {
    std::istringstream in(ini);
    po::variables_map vm;
    po::store(po::parse_config_file(in, options), vm);
    po::notify(vm);
    checksum += boostReadBack(vm, w, true);
  }
  state.counters["checksum"] = checksum;
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * w.parameters()));
}

po::variables_map boostMapOf200(const Workload& w, po::options_description& options) {
  boostDeclare(options, w);
  const std::vector<const char*> argv = w.argv(Workload::PEERS, false);
  po::variables_map vm;
  po::store(po::parse_command_line(static_cast<int>(argv.size()), argv.data(), options), vm);
  po::notify(vm);
  return vm;
}

void Boost_W4byName(benchmark::State& state) {
  const Workload& w = workload(200, 200);
  po::options_description options;
  const po::variables_map vm = boostMapOf200(w, options);
  const std::string name = w.names()[W4_PARAMETER];
  int64_t checksum = 0;
  for (auto _ : state) {
    checksum += vm[name].as<int>();
  }
  benchmark::DoNotOptimize(checksum);
  state.counters["checksum"] = static_cast<double>(checksum);
}

void Boost_W4held(benchmark::State& state) {
  const Workload& w = workload(200, 200);
  po::options_description options;
  const po::variables_map vm = boostMapOf200(w, options);
  const po::variable_value held = vm[w.names()[W4_PARAMETER]];
  int64_t checksum = 0;
  for (auto _ : state) {
    checksum += held.as<int>();
  }
  benchmark::DoNotOptimize(checksum);
  state.counters["checksum"] = static_cast<double>(checksum);
}
#endif

#ifdef ZELK_BENCH_HAVE_CLI11
// Storage for every CLI11 option of one run.
struct Cli11Values {
  std::vector<bool> bools;
  std::vector<std::string> strings;
  std::vector<int> ints;
  std::vector<uint64_t> uints;
  std::vector<double> doubles;
  std::vector<std::vector<int>> intLists;
  std::vector<std::vector<std::string>> stringLists;
  explicit Cli11Values(size_t n)
      : bools(n), strings(n), ints(n), uints(n), doubles(n), intLists(n), stringLists(n) {}
};

// Booleans are flags; std::vector<bool> has no addressable elements, so they go through a
// callback.
void cli11Declare(CLI::App& app, Cli11Values& v, const Workload& w) {
  for (size_t i = 0; i < w.parameters(); ++i) {
    const std::string flag = "--" + w.names()[i];
    switch (bench::kindOf(i)) {
      case Kind::BOOL:
        app.add_flag_function(flag, [&v, i](int64_t count) { v.bools[i] = count > 0; });
        break;
      case Kind::STRING:
        app.add_option(flag, v.strings[i]);
        break;
      case Kind::INT32:
        app.add_option(flag, v.ints[i]);
        break;
      case Kind::UINT64:
        app.add_option(flag, v.uints[i]);
        break;
      case Kind::DOUBLE:
        app.add_option(flag, v.doubles[i]);
        break;
      case Kind::UNBOUNDED_INT32:
        app.add_option(flag, v.intLists[i]);
        break;
      case Kind::UNBOUNDED_STRING:
        app.add_option(flag, v.stringLists[i]);
        break;
    }
  }
}

double cli11ReadBack(const Cli11Values& v, const Workload& w, bool all) {
  double sum = 0;
  const size_t count = all ? w.parameters() : w.given().size();
  for (size_t k = 0; k < count; ++k) {
    const size_t i = all ? k : w.given()[k];
    switch (bench::kindOf(i)) {
      case Kind::BOOL:
        sum += v.bools[i] ? 1 : 0;
        break;
      case Kind::STRING:
        sum += static_cast<double>(v.strings[i].size());
        break;
      case Kind::INT32:
        sum += v.ints[i];
        break;
      case Kind::UINT64:
        sum += static_cast<double>(v.uints[i]);
        break;
      case Kind::DOUBLE:
        sum += v.doubles[i];
        break;
      case Kind::UNBOUNDED_INT32:
        sum += v.intLists[i].at(0) + v.intLists[i].at(1);
        break;
      case Kind::UNBOUNDED_STRING:
        sum += static_cast<double>(v.stringLists[i].at(0).size() + v.stringLists[i].at(1).size());
        break;
    }
  }
  return sum;
}

void Cli11_W1full(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  const std::vector<const char*> argv = w.argv(Workload::PEERS, false);
  double checksum = 0;
  for (auto _ : state) {
    CLI::App app("bench");
    Cli11Values v(w.parameters());
    cli11Declare(app, v, w);
    app.parse(static_cast<int>(argv.size()), argv.data());
    checksum += cli11ReadBack(v, w, false);
  }
  setCounters(state, checksum, w);
}

void Cli11_W1parse(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  const std::vector<const char*> argv = w.argv(Workload::PEERS, false);
  CLI::App app("bench");
  Cli11Values v(w.parameters());
  cli11Declare(app, v, w);
  double checksum = 0;
  for (auto _ : state) {
    app.clear();
    app.parse(static_cast<int>(argv.size()), argv.data());
    checksum += cli11ReadBack(v, w, false);
    state.PauseTiming();
    for (auto& list : v.intLists) list.clear();
    for (auto& list : v.stringLists) list.clear();
    state.ResumeTiming();
  }
  setCounters(state, checksum, w);
}

void Cli11_W3ini(benchmark::State& state) {
  const Workload& w = workload(state.range(0), state.range(1));
  const std::string ini = w.iniText();
  CLI::App app("bench");
  Cli11Values v(w.parameters());
  cli11Declare(app, v, w);
  app.allow_config_extras(false);
  double checksum = 0;
  for (auto _ : state) {
    app.clear();
    std::istringstream in(ini);
    app.parse_from_stream(in);
    checksum += cli11ReadBack(v, w, true);
    state.PauseTiming();
    for (auto& list : v.intLists) list.clear();
    for (auto& list : v.stringLists) list.clear();
    state.ResumeTiming();
  }
  state.counters["checksum"] = checksum;
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations() * w.parameters()));
}
#endif

void sized(benchmark::internal::Benchmark* b) {
  for (const auto& size : SIZES) {
    b->Args({static_cast<int64_t>(size[0]), static_cast<int64_t>(size[1])});
  }
  b->ArgNames({"P", "A"})->Unit(benchmark::kMicrosecond);
}

// W3 uses E = P entries; the argument count is not used.
void sizedFiles(benchmark::internal::Benchmark* b) {
  for (const auto& size : SIZES) {
    b->Args({static_cast<int64_t>(size[0]), 0});
  }
  b->ArgNames({"P", "A"})->Unit(benchmark::kMicrosecond);
}

// One process doing W1full at the largest size once, for peak-RSS comparisons.
int memoryRun(const std::string& who) {
  const Workload& w = workload(20000, 5000);
  double checksum = 0;
  if (who == "ours") {
    zc::ConfigurationManager& m = manager();
    const std::string path = registryFileFor(w);
    zc::ConfigurationRegistryLoader::loadFile(path.c_str(), &m, 0);
    checksum = oursParse(*m.getSpecification(specIdFor(w.parameters()).c_str()), w, false);
#ifdef ZELK_BENCH_HAVE_BOOST_PO
  } else if (who == "boost") {
    po::options_description options;
    boostDeclare(options, w);
    checksum = boostParse(options, w, false);
#endif
#ifdef ZELK_BENCH_HAVE_CLI11
  } else if (who == "cli11") {
    CLI::App app("bench");
    Cli11Values v(w.parameters());
    cli11Declare(app, v, w);
    const std::vector<const char*> argv = w.argv(Workload::PEERS, false);
    app.parse(static_cast<int>(argv.size()), argv.data());
    checksum = cli11ReadBack(v, w, false);
#endif
  } else if (who != "none") {
    std::cerr << "unknown --memory subject " << who << '\n';
    return 2;
  }
  std::cout << "checksum " << checksum << '\n';
  return 0;
}

}  // namespace

namespace {
// The re-read or restart installation set up by --once for a W6 workload.
Reread* gReread = nullptr;
const RestartInstallation* gRestart = nullptr;

// The W6 workloads of --once by name.
const std::map<std::string, Reread::Source>& rereadSources() {
  static const std::map<std::string, Reread::Source> sources = {
      {"W6", Reread::CLI}, {"W6prefixes", Reread::CLI_PREFIXES}, {"W6file", Reread::FILE},
      {"W6app", Reread::APP}};
  return sources;
}
}  // namespace

// One run of a workload, for instruction counts: callgrind collects inside this function only
// (--toggle-collect=measuredRun*), so set-up and generation are left out.
extern "C" __attribute__((noinline)) double measuredRun(const std::string& who,
                                                        const std::string& what,
                                                        const Workload& w) {
  if (who == "ours" && (what == "W6restart" || what == "W6restartFile")) {
    return oursRestart(w, *gRestart, what == "W6restartFile");
  }
  if (who == "ours") {
    zc::ConfigurationManager& m = manager();
    if (what == "W1full") {
      zc::ConfigurationRegistryLoader::loadFile(registryFileFor(w).c_str(), &m, 0);
      return oursParse(*m.getSpecification(specIdFor(w.parameters()).c_str()), w, false);
    }
    const zc::Specification& spec = *m.getSpecification(specIdFor(w.parameters()).c_str());
    if (what == "W1parse" || what == "W2") {
      return oursParse(spec, w, what == "W2");
    }
    if (what.compare(0, 2, "W6") == 0) {
      return gReread->run();
    }
    if (what == "W4byName" || what == "W4held") {
      int64_t checksum = 0;
      if (what == "W4held") {
        for (int i = 0; i < W4_CACHED_CALLS; ++i) {
          checksum += gOnceW4->held.asInt32();
        }
      } else {
        for (int i = 0; i < W4_CACHED_CALLS; ++i) {
          checksum += gOnceW4->values.getValue(gOnceW4->name.c_str()).asInt32();
        }
      }
      return static_cast<double>(checksum);
    }
    if (what == "W4cached") {
      double checksum = 0;
      for (int i = 0; i < W4_CACHED_CALLS; ++i) {
        checksum += static_cast<double>(m.getValueGroup(spec.getId(), false, 0).getItemCount());
      }
      return checksum;
    }
    if (what == "W3") {
      const std::string path = installation().root() + "/" + specIdFor(w.parameters()) + ".xml";
      zc::XmlFileValueProvider file(3, "");
      file.enableProvider(path.c_str(), 0);
      zc::ValueGroup merged(&spec);
      merged.merge(spec, file.getValues(spec, 0));
      return readAll(merged, w);
    }
  }
#ifdef ZELK_BENCH_HAVE_BOOST_PO
  if (who == "boost") {
    po::options_description options;
    boostDeclare(options, w, what == "W3");
    if (what == "W3") {
      std::istringstream in(w.iniText());
      po::variables_map vm;
      po::store(po::parse_config_file(in, options), vm);
      po::notify(vm);
      return boostReadBack(vm, w, true);
    }
    return boostParse(options, w, what == "W2");
  }
#endif
#ifdef ZELK_BENCH_HAVE_CLI11
  if (who == "cli11" && what != "W2") {
    CLI::App app("bench");
    Cli11Values v(w.parameters());
    cli11Declare(app, v, w);
    if (what == "W3") {
      std::istringstream in(w.iniText());
      app.parse_from_stream(in);
      return cli11ReadBack(v, w, true);
    }
    const std::vector<const char*> argv = w.argv(Workload::PEERS, false);
    app.parse(static_cast<int>(argv.size()), argv.data());
    return cli11ReadBack(v, w, false);
  }
#endif
  throw std::runtime_error("no such run: " + who + " " + what);
}

namespace {

// --once=who:what:P:A prepares the workload, then runs it once through measuredRun.
int onceRun(const std::string& spec) {
  std::istringstream in(spec);
  std::string who, what, p, a;
  std::getline(in, who, ':');
  std::getline(in, what, ':');
  std::getline(in, p, ':');
  std::getline(in, a, ':');
  const Workload& w = workload(std::stoul(p), what == "W3" ? 0 : std::stoul(a));
  // The generated texts and files exist before the measured part begins.
  w.words(Workload::OURS, true);
  w.words(Workload::OURS, false);
  w.words(Workload::PEERS, true);
  w.words(Workload::PEERS, false);
  std::unique_ptr<RestartInstallation> restart;
  std::unique_ptr<Reread> reread;
  if (who == "ours" && (what == "W6restart" || what == "W6restartFile")) {
    restart.reset(new RestartInstallation(w));
    restart->activate();
    gRestart = restart.get();
    // The manager exists before the measured part: only the re-read is counted.
    zc::ConfigurationManager::getInstance();
  } else if (who == "ours" && rereadSources().count(what) != 0) {
    reread.reset(new Reread(w, rereadSources().at(what)));
    reread->run();
    gReread = reread.get();
  } else if (who == "ours") {
    if (what == "W1full") {
      registryFileFor(w);
    } else if (what == "W4cached") {
      cachedSpecification();
    } else if (what == "W4byName" || what == "W4held") {
      static OnceW4 once;
      const zc::Specification* spec = nullptr;
      once.values = groupOf200(spec);
      once.name = workload(200, 200).names()[W4_PARAMETER];
      once.held = once.values.getValue(once.name.c_str());
      // Past the locked look-ups after which the group answers without its lock.
      for (int i = 0; i < 1000; ++i) {
        once.values.getValue(once.name.c_str()).asInt32();
      }
      gOnceW4 = &once;
    } else {
      ensureLoaded(w);
    }
    if (what == "W3") {
      bench::writeFile(installation().root() + "/" + specIdFor(w.parameters()) + ".xml",
                       w.valueFileText(specIdFor(w.parameters())));
    }
  }
  std::cout << "checksum " << measuredRun(who, what, w) << '\n';
  return 0;
}

}  // namespace

BENCHMARK(Ours_W1full)->Apply(sized);
BENCHMARK(Ours_W1parse)->Apply(sized);
BENCHMARK(Ours_W2prefixes)->Apply(sized);
BENCHMARK(Ours_W3valueFile)->Apply(sizedFiles);
BENCHMARK(Ours_W4byName);
BENCHMARK(Ours_W4held);
BENCHMARK(Ours_W4cachedGroup);
BENCHMARK(Ours_W4readers)->Arg(0)->Arg(1)->Threads(1)->Threads(2)->Threads(4)->UseRealTime();
BENCHMARK(Ours_W5startup)->Unit(benchmark::kMicrosecond);
BENCHMARK(Floor_W5startup)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(Ours_W6reread, Reread::CLI)->Name("Ours_W6reread")->Apply(sized);
BENCHMARK_TEMPLATE(Ours_W6reread, Reread::CLI_PREFIXES)->Name("Ours_W6rereadPrefixes")->Apply(sized);
BENCHMARK_TEMPLATE(Ours_W6reread, Reread::FILE)->Name("Ours_W6rereadFile")->Apply(sized);
BENCHMARK_TEMPLATE(Ours_W6reread, Reread::APP)->Name("Ours_W6rereadApp")->Apply(sized);
BENCHMARK_TEMPLATE(Ours_W6restart, false)->Name("Ours_W6restart")->Apply(sized);
BENCHMARK_TEMPLATE(Ours_W6restart, true)->Name("Ours_W6restartFile")->Apply(sized);
#ifdef ZELK_BENCH_HAVE_BOOST_PO
BENCHMARK(Boost_W1full)->Apply(sized);
BENCHMARK(Boost_W1parse)->Apply(sized);
BENCHMARK(Boost_W2prefixes)->Apply(sized);
BENCHMARK(Boost_W3ini)->Apply(sizedFiles);
BENCHMARK(Boost_W4byName);
BENCHMARK(Boost_W4held);
#endif
#ifdef ZELK_BENCH_HAVE_CLI11
BENCHMARK(Cli11_W1full)->Apply(sized);
BENCHMARK(Cli11_W1parse)->Apply(sized);
BENCHMARK(Cli11_W3ini)->Apply(sizedFiles);
#endif

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::strncmp(argv[i], "--once=", 7) == 0) {
      try {
        return onceRun(argv[i] + 7);
      } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << '\n';
        return 1;
      }
    }
    if (std::strncmp(argv[i], "--memory=", 9) == 0) {
      try {
        return memoryRun(argv[i] + 9);
      } catch (const std::exception& e) {
        std::cerr << "error: " << e.what() << '\n';
        return 1;
      }
    }
  }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  try {
    benchmark::RunSpecifiedBenchmarks();
  } catch (const std::exception& e) {
    std::cerr << "error: " << e.what() << '\n';
    return 1;
  }
  benchmark::Shutdown();
  return 0;
}
