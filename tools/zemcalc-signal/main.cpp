// zemcalc-signal: crash-test signal processing on files with the zemcalc library. Reads CSV
// tables and MME channel files, runs one command (filter, spectrum, transmissibility, hic,
// convert), writes CSV and, on request, an SVG plot. Exit status 0 on success, 1 when a file
// or a computation fails, 2 for a wrong command line; every failure is one line on standard
// error, and no output file is written then.
#include <cmath>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <zemcalc/zemcalc.h>

#include "signal_files.h"
#include "svg_plot.h"

using namespace signal_tool;

namespace {

struct Usage : Failure {
  using Failure::Failure;
};

const char* const kGeneralHelp =
    "usage: zemcalc-signal <command> [options] <file>...\n"
    "Crash-test signal processing on CSV tables (a time column, then channels) and ISO/TS 13499\n"
    "(MME) channel files.\n"
    "commands:\n"
    "  filter            CFC filter at any rate, the fixed 10 kHz kernels, moving averages\n"
    "  spectrum          amplitude and phase spectra\n"
    "  transmissibility  transmissibility of one channel to another\n"
    "  hic               resultant, HIC and 3 ms clip of acceleration channels\n"
    "  convert           a channel's values from one unit system to another\n"
    "options of every command:\n"
    "  --channel NAMES   channels to use, comma separated (default: all)\n"
    "  --time-unit U     unit of the time column: s, ms or us (default s; MME files are in s)\n"
    "  -o, --output FILE CSV output (default: standard output)\n"
    "  --svg FILE        also draw an SVG plot\n"
    "  -h, --help        help of the command\n"
    "exit status: 0 success, 1 bad file or failed computation, 2 wrong command line\n";

const std::map<std::string, std::string> kCommandHelp = {
    {"filter",
     "usage: zemcalc-signal filter (--cfc CLASS [--iso] [--ends E] [--allow-low-rate] | --fixed NAME | --mva N)\n"
     "                             [common options] <file>...\n"
     "  --cfc CLASS        CFC filter of SAE J211/1 at the curve's own rate (60, 180, 600, 1000 or any value)\n"
     "  --iso              design constant 25/12 of ISO 6487 instead of 2.0775\n"
     "  --ends E           reflection (default), mirror, constant or none\n"
     "  --allow-low-rate   accept a rate below 10 times the class\n"
     "  --fixed NAME       fixed 10 kHz kernel: cfc60, cfc180, cfc600 or firf16\n"
     "  --mva N            moving average of N samples\n"
     "Writes the time column and the filtered channels; the plot shows raw and filtered.\n"},
    {"spectrum",
     "usage: zemcalc-signal spectrum [--window none|hamming|hann] [--nfft N] [common options] <file>...\n"
     "Amplitude and phase (degrees) of each channel over frequency (1 / time unit); N is a power of two,\n"
     "by default the smallest one holding the channel. The plot has logarithmic axes.\n"},
    {"transmissibility",
     "usage: zemcalc-signal transmissibility --input NAME --output-channel NAME [--step DT] [--fmin F]\n"
     "                                       [--fmax F] [--method direct|circular|linear] [common options] <file>...\n"
     "Transmissibility of the input channel to the output channel; DT defaults to the mean step.\n"},
    {"hic",
     "usage: zemcalc-signal hic [--windows MS,...] [--clip MS] [--units SYSTEM] [common options] <file>...\n"
     "Resultant of three channels (or one channel as it is), then HIC for each window (default 15,36 ms)\n"
     "and the clip level exceeded for a cumulative MS ms (default 3). Values are in g unless --units\n"
     "gives the channels' unit system (\"UNIT MM TON MS KELVIN\" or \"mm T ms K\"), whose time unit\n"
     "then also applies to the time column. Writes criterion,value,t1,t2 rows; the plot shows the resultant.\n"},
    {"convert",
     "usage: zemcalc-signal convert --dimension NAME --from SYSTEM --to SYSTEM [common options] <file>...\n"
     "Converts the channels' values (of dimension NAME: acceleration, velocity, length, force, pressure,\n"
     "moment, mass, time, frequency, angle, density, area, volume) and the time column from one unit\n"
     "system to another; a system is a solver line \"UNIT MM TON S KELVIN\" or four short names \"mm T s K\".\n"},
};

struct Options {
  std::string command;
  std::map<std::string, std::string> values;
  std::set<std::string> flags;
  std::vector<std::string> files;

  bool Has(const std::string& key) const { return values.count(key) != 0; }
  std::string Get(const std::string& key, const std::string& fallback = "") const {
    const auto it = values.find(key);
    return it == values.end() ? fallback : it->second;
  }
  double Number(const std::string& key, double fallback) const {
    if (!Has(key)) return fallback;
    char* end = nullptr;
    const std::string& text = values.at(key);
    const double v = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !std::isfinite(v)) throw Usage("--" + key + ": '" + text + "' is not a number");
    return v;
  }
};

Options Parse(int argc, char** argv) {
  static const std::set<std::string> kFlags = {"iso", "allow-low-rate", "help"};
  static const std::set<std::string> kValued = {"channel", "time-unit", "output", "svg", "cfc", "ends", "fixed",
                                                "mva", "window", "nfft", "input", "output-channel", "step", "fmin",
                                                "fmax", "method", "windows", "clip", "units", "dimension", "from",
                                                "to"};
  Options o;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (arg == "-h") arg = "--help";
    if (arg == "-o") arg = "--output";
    if (arg.rfind("--", 0) == 0 && arg.size() > 2) {
      const std::string key = arg.substr(2);
      if (kFlags.count(key)) {
        o.flags.insert(key);
      } else if (kValued.count(key)) {
        if (i + 1 >= argc) throw Usage(arg + " needs a value");
        o.values[key] = argv[++i];
      } else {
        throw Usage("unknown option " + arg);
      }
    } else if (o.command.empty()) {
      o.command = arg;
    } else {
      o.files.push_back(arg);
    }
  }
  return o;
}

std::string Narrow(const wchar_t* text) {
  std::string out;
  for (; text && *text; ++text) out += *text < 128 ? static_cast<char>(*text) : '?';
  return out;
}

WbString Wide(const std::string& text) { return WbString(std::wstring(text.begin(), text.end())); }

void Check(const WbErrObj* error, const std::string& context) {
  if (error) throw Failure(context + Narrow(error->GetMessage()));
}

_ZmUnitTime TimeUnit(const Options& o) {
  const std::string name = o.Get("time-unit", "s");
  const int index = ZmUnitMgr.ShortName2UnitIndex(ZmUnitTypeTime, Wide(name), 1);
  if (index < 0) throw Usage("--time-unit: unknown unit '" + name + "' (s, ms or us)");
  return static_cast<_ZmUnitTime>(index);
}

ZmUnitSystem System(const std::string& text, const std::string& option) {
  ZmUnitSystem system;
  const WbString wide = Wide(text);
  const WbErrObj* error = nullptr;
  if (text.rfind("UNIT", 0) == 0 || text.rfind("unit", 0) == 0) {
    error = ZmUnitMgr.CSMSolverStringToSystem(wide, system, 1);
  } else {
    std::vector<std::string> words;
    std::string word;
    for (char c : text + " ") {
      if (c == ' ' || c == '\t') {
        if (!word.empty()) words.push_back(word);
        word.clear();
      } else {
        word += c;
      }
    }
    if (words.size() != 4) throw Usage(option + ": give a solver line or four short unit names, not '" + text + "'");
    error = ZmUnitMgr.ShortUnitStringsToSystem(Wide(words[0]), Wide(words[1]), Wide(words[2]), Wide(words[3]), system, 0);
  }
  if (error) throw Usage(option + ": " + Narrow(error->GetMessage()));
  return system;
}

// The channels of every input file, the selected ones in the order asked, all on one time axis.
std::vector<Channel> LoadChannels(const Options& o) {
  if (o.files.empty()) throw Usage("no input file");
  std::vector<Channel> all;
  for (const std::string& path : o.files) {
    for (Channel& c : ReadSignalFile(path)) all.push_back(std::move(c));
  }
  std::vector<Channel> chosen;
  if (!o.Has("channel")) {
    chosen = all;
  } else {
    std::string names = o.Get("channel") + ",";
    for (std::size_t at = 0, comma; (comma = names.find(',', at)) != std::string::npos; at = comma + 1) {
      const std::string name = names.substr(at, comma - at);
      bool found = false;
      for (const Channel& c : all) {
        if (c.name == name) {
          chosen.push_back(c);
          found = true;
          break;
        }
      }
      if (!found) throw Failure("no channel '" + name + "' in the input");
    }
  }
  const auto& first = chosen.front().curve;
  for (const Channel& c : chosen) {
    bool same = c.curve.GetSize() == first.GetSize();
    for (std::uint64_t i = 0; same && i < first.GetSize(); ++i) {
      same = std::fabs(c.curve[i].x - first[i].x) <= 1e-9 * std::max(1.0, std::fabs(first[i].x));
    }
    if (!same) throw Failure("channel '" + c.name + "' is not sampled at the times of '" + chosen.front().name + "'");
  }
  return chosen;
}

std::vector<double> Xs(const WbArrayTempl<ZmPoint2d>& c) {
  std::vector<double> v;
  for (const auto& p : c) v.push_back(p.x);
  return v;
}
std::vector<double> Ys(const WbArrayTempl<ZmPoint2d>& c) {
  std::vector<double> v;
  for (const auto& p : c) v.push_back(p.y);
  return v;
}

struct Result {
  Table table;
  Plot plot;
};

std::unique_ptr<ZmFilterd> MakeFilter(const Options& o, std::string& label) {
  const _ZmUnitTime unit = TimeUnit(o);
  const int choices = o.Has("cfc") + o.Has("fixed") + o.Has("mva");
  if (choices != 1) throw Usage("filter: give one of --cfc, --fixed and --mva");
  if (o.Has("cfc")) {
    static const std::map<std::string, ZmFilterEnds> kEnds = {{"reflection", ZmFilterEndsReflection},
                                                              {"mirror", ZmFilterEndsMirror},
                                                              {"constant", ZmFilterEndsConstant},
                                                              {"none", ZmFilterEndsNone}};
    const auto ends = kEnds.find(o.Get("ends", "reflection"));
    if (ends == kEnds.end()) throw Usage("--ends: reflection, mirror, constant or none");
    auto filter = std::make_unique<ZmFilterCFCd>(o.Number("cfc", 60), unit, ends->second,
                                                 o.flags.count("iso") ? ZmCFCDesignISO6487 : ZmCFCDesignJ211);
    filter->SetAllowLowRate(o.flags.count("allow-low-rate") ? 1 : 0);
    label = "CFC " + o.Get("cfc");
    return filter;
  }
  if (o.Has("mva")) {
    const double n = o.Number("mva", 0);
    if (!(n >= 1 && n <= 1e6) || n != std::floor(n)) throw Usage("--mva: a whole number of samples from 1 to 10^6");
    label = "MVA " + o.Get("mva");
    return std::make_unique<ZmFilterMVAd>(static_cast<int>(n), ZmExtrapolationReflection);
  }
  const std::string name = o.Get("fixed");
  label = name;
  if (name == "cfc60") return std::make_unique<ZmFilterCFC60_10kHzd>(unit);
  if (name == "cfc180") return std::make_unique<ZmFilterCFC180_10kHzd>(unit);
  if (name == "cfc600") return std::make_unique<ZmFilterCFC600_10kHzd>(unit);
  if (name == "firf16") return std::make_unique<ZmFilterFIRF16d>();
  throw Usage("--fixed: cfc60, cfc180, cfc600 or firf16");
}

Result Filter(const Options& o, const std::vector<Channel>& channels) {
  std::string label;
  std::unique_ptr<ZmFilterd> filter = MakeFilter(o, label);
  Result r;
  r.table.header = {"time"};
  r.table.columns = {Xs(channels[0].curve)};
  r.plot = {"Filtered channels (" + label + ")", "time [" + o.Get("time-unit", "s") + "]", "value", false, {}};
  for (const Channel& c : channels) {
    WbArrayTempl<ZmPoint2d> out;
    Check(filter->Compute(c.curve, out), "channel '" + c.name + "': ");
    r.table.header.push_back(c.name);
    r.table.columns.push_back(Ys(out));
    r.plot.series.push_back({c.name, Xs(c.curve), Ys(c.curve)});
    r.plot.series.push_back({c.name + " " + label, Xs(out), Ys(out)});
  }
  return r;
}

Result Spectrum(const Options& o, const std::vector<Channel>& channels) {
  static const std::map<std::string, int> kWindows = {
      {"none", 0}, {"hamming", ZmMathd::FFT_WINDOW_HAMMING}, {"hann", ZmMathd::FFT_WINDOW_HANN}};
  const auto window = kWindows.find(o.Get("window", "none"));
  if (window == kWindows.end()) throw Usage("--window: none, hamming or hann");
  Result r;
  r.table.header = {"frequency"};
  r.plot = {"Amplitude spectra", "frequency [1/" + o.Get("time-unit", "s") + "]", "amplitude", true, {}};
  for (const Channel& c : channels) {
    const std::uint64_t n = c.curve.GetSize();
    std::uint64_t nfft = static_cast<std::uint64_t>(o.Number("nfft", 0));
    for (std::uint64_t p = 2; nfft == 0; p *= 2) {
      if (p >= n || p >= ZmMathd::MAX_FFT_LENGTH) nfft = p;
    }
    if (n > 0x7fffffffu) throw Failure("channel '" + c.name + "' is too long for a spectrum");
    const int bounds[2] = {0, static_cast<int>(n) - 1};
    WbArrayTempl<ZmPoint2d> amplitude, phase;
    Check(ZmMathd::ComputeFFT(c.curve, bounds, window->second, nfft, amplitude, 0, &phase), "channel '" + c.name + "': ");
    if (r.table.columns.empty()) r.table.columns.push_back(Xs(amplitude));
    r.table.header.push_back(c.name + " amplitude");
    r.table.header.push_back(c.name + " phase");
    r.table.columns.push_back(Ys(amplitude));
    r.table.columns.push_back(Ys(phase));
    // The upper half mirrors the lower one: the plot stops at the Nyquist frequency.
    const std::size_t half = static_cast<std::size_t>(nfft / 2 + 1);
    auto xs = Xs(amplitude), ys = Ys(amplitude);
    xs.resize(std::min(half, xs.size()));
    ys.resize(xs.size());
    r.plot.series.push_back({c.name, xs, ys});
  }
  return r;
}

const Channel& Named(const std::vector<Channel>& channels, const std::string& name, const std::string& option) {
  if (name.empty()) throw Usage("transmissibility: " + option + " is needed");
  for (const Channel& c : channels) {
    if (c.name == name) return c;
  }
  throw Failure("no channel '" + name + "' in the input");
}

Result Transmissibility(const Options& o, const std::vector<Channel>& channels) {
  const Channel& in = Named(channels, o.Get("input"), "--input");
  const Channel& out = Named(channels, o.Get("output-channel"), "--output-channel");
  static const std::map<std::string, int> kMethods = {{"direct", ZmMathd::TRANSMISSIBILITY_DIRECT},
                                                      {"circular", ZmMathd::TRANSMISSIBILITY_CIRCULAR_CORRELATION},
                                                      {"linear", ZmMathd::TRANSMISSIBILITY_LINEAR_CORRELATION}};
  const auto method = kMethods.find(o.Get("method", "direct"));
  if (method == kMethods.end()) throw Usage("--method: direct, circular or linear");
  const std::uint64_t n = in.curve.GetSize();
  const double mean = n > 1 ? (in.curve[n - 1].x - in.curve[0].x) / static_cast<double>(n - 1) : 0.0;
  const double absent = ZmNonValP2d.x;
  WbArrayTempl<ZmPoint2d> result;
  Check(ZmMathd::ComputeTransmissibility(in.curve, out.curve, absent, absent, o.Number("step", mean),
                                         o.Number("fmin", absent), method->second, o.Number("fmax", absent), absent,
                                         absent, 0, result, nullptr, nullptr, nullptr),
        "");
  Result r;
  r.table.header = {"frequency", "transmissibility " + out.name + "/" + in.name};
  r.table.columns = {Xs(result), Ys(result)};
  r.plot = {"Transmissibility", "frequency [1/" + o.Get("time-unit", "s") + "]", "ratio", true,
            {{out.name + " / " + in.name, Xs(result), Ys(result)}}};
  return r;
}

Result Hic(const Options& o, const std::vector<Channel>& channels) {
  if (channels.size() != 1 && channels.size() != 3) {
    throw Usage("hic: give one resultant channel or three components (--channel x,y,z)");
  }
  WbArrayTempl<ZmPoint2d> resultant = channels[0].curve;
  if (channels.size() == 3) {
    Check(ZmMathd::ComputeResultant(channels[0].curve, channels[1].curve, channels[2].curve, resultant), "");
  }
  const bool inG = !o.Has("units");
  ZmUnitSystem units = inG ? ZmUnitSystem() : System(o.Get("units"), "--units");
  if (inG) units.SetUnit(TimeUnit(o));
  Result r;
  r.table.header = {"criterion", "value", "t1", "t2"};
  r.table.columns.resize(4);
  std::string windows = o.Get("windows", "15,36") + ",";
  std::vector<std::string> criteria;
  for (std::size_t at = 0, comma; (comma = windows.find(',', at)) != std::string::npos; at = comma + 1) {
    const std::string ms = windows.substr(at, comma - at);
    char* end = nullptr;
    const double window = std::strtod(ms.c_str(), &end);
    if (ms.empty() || *end != '\0') throw Usage("--windows: '" + ms + "' is not a number of milliseconds");
    double hic = 0, t1 = 0, t2 = 0;
    Check(ZmMathd::ComputeHIC(resultant, window * 1e-3, units, inG ? 1 : 0, hic, t1, t2), "");
    criteria.push_back("HIC" + ms);
    for (int k = 0; k < 4; ++k) r.table.columns[k].push_back(k == 0 ? window : k == 1 ? hic : k == 2 ? t1 : t2);
  }
  double level = 0;
  const double clip = o.Number("clip", 3);
  Check(ZmMathd::ComputeClipLevel(resultant, clip * 1e-3, units, inG ? 1 : 0, level), "");
  criteria.push_back("clip " + o.Get("clip", "3") + " ms");
  for (int k = 0; k < 4; ++k) r.table.columns[k].push_back(k == 0 ? clip : k == 1 ? level : NAN);
  r.table.header[0] = "criterion (window or duration in ms)";
  r.plot = {"Resultant", "time", inG ? "acceleration [g]" : "acceleration", false,
            {{"resultant", Xs(resultant), Ys(resultant)}}};
  // The criterion names go to standard error as a readable summary.
  for (std::size_t k = 0; k < criteria.size(); ++k) {
    std::cerr << criteria[k] << " = " << r.table.columns[1][k];
    if (k + 1 < criteria.size()) std::cerr << " (t1 = " << r.table.columns[2][k] << ", t2 = " << r.table.columns[3][k] << ")";
    std::cerr << (k + 1 < criteria.size() ? "\n" : inG ? " g\n" : "\n");
  }
  return r;
}

Result Convert(const Options& o, const std::vector<Channel>& channels) {
  static const std::map<std::string, const ZmUnitDim*> kDims = {
      {"acceleration", &ZmUnitDimAcceleration}, {"velocity", &ZmUnitDimVelocity}, {"length", &ZmUnitDimLength},
      {"force", &ZmUnitDimForce}, {"pressure", &ZmUnitDimPressure}, {"moment", &ZmUnitDimMoment},
      {"mass", &ZmUnitDimMass}, {"time", &ZmUnitDimTime}, {"frequency", &ZmUnitDimFreq},
      {"angle", &ZmUnitDimAngle}, {"density", &ZmUnitDimDensity}, {"area", &ZmUnitDimArea},
      {"volume", &ZmUnitDimVolume}};
  const auto dim = kDims.find(o.Get("dimension"));
  if (dim == kDims.end()) throw Usage("convert: --dimension is one of acceleration, velocity, length, force, ...");
  if (!o.Has("from") || !o.Has("to")) throw Usage("convert: --from and --to are needed");
  const ZmUnitSystem from = System(o.Get("from"), "--from"), to = System(o.Get("to"), "--to");
  const auto converter = [&](const ZmUnitDim& d) {
    ZmUnitConverter c;
    unsigned char needed = 0;
    Check(c.InitFromTo(from, to, needed, &d), "");
    return c;
  };
  const ZmUnitConverter values = converter(*dim->second), times = converter(ZmUnitDimTime);
  Result r;
  r.table.header = {"time"};
  std::vector<double> t = Xs(channels[0].curve);
  for (double& v : t) times.ConvertScalar(ZmUnitDimTime, v);
  r.table.columns = {t};
  r.plot = {"Converted channels", "time", o.Get("dimension"), false, {}};
  for (const Channel& c : channels) {
    std::vector<double> y = Ys(c.curve);
    for (double& v : y) values.ConvertScalar(*dim->second, v);
    r.table.header.push_back(c.name);
    r.table.columns.push_back(y);
    r.plot.series.push_back({c.name, t, y});
  }
  return r;
}

int Run(int argc, char** argv) {
  const Options o = Parse(argc, argv);
  if (o.command.empty() || o.command == "help" || (o.command.rfind("--", 0) == 0)) {
    std::cout << kGeneralHelp;
    return o.command.empty() && !o.flags.count("help") ? 2 : 0;
  }
  const auto help = kCommandHelp.find(o.command);
  if (help == kCommandHelp.end()) throw Usage("unknown command '" + o.command + "' (see zemcalc-signal --help)");
  if (o.flags.count("help")) {
    std::cout << help->second;
    return 0;
  }
  const std::vector<Channel> channels = LoadChannels(o);
  Result r = o.command == "filter"     ? Filter(o, channels)
             : o.command == "spectrum" ? Spectrum(o, channels)
             : o.command == "hic"      ? Hic(o, channels)
             : o.command == "convert"  ? Convert(o, channels)
                                       : Transmissibility(o, channels);
  // Everything is computed before anything is written.
  const std::string svg = o.Has("svg") ? RenderSvg(r.plot) : "";
  WriteCsv(r.table, o.Get("output", "-"));
  if (o.Has("svg")) WriteTextFile(svg, o.Get("svg"));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const Usage& e) {
    std::cerr << "zemcalc-signal: " << e.what() << "\n";
    return 2;
  } catch (const std::exception& e) {
    std::cerr << "zemcalc-signal: " << e.what() << "\n";
    return 1;
  }
}
