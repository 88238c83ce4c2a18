// Throughput of the codecs beside well-known libraries, in one run, with the ratios at the end.
//
// JSON: read (text to document) and write (document to text) of canada (numbers), citm_catalog
// (objects) and twitter (strings, non-ASCII) against RapidJSON (full-precision numbers, Writer) and
// nlohmann/json (ordered_json, which keeps key order as we do). Base64: encode and decode of 16 MiB
// against OpenSSL's EVP_EncodeBlock/EVP_DecodeBlock.
#include "ads/ThirdParty/KBLStringEncoding.h"
#include "ads/ThirdParty/ZEBJSON.h"

#include <benchmark/benchmark.h>
#include <fmt/format.h>
#include <openssl/evp.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <map>
#include <random>
#include <sstream>

namespace {

const char* const kCorpus[] = {"canada", "citm_catalog", "twitter"};

std::string readCorpus(const std::string& name) {
    std::ifstream in(std::string(QUIBLO_TESTDATA_DIR) + "/json-corpus/" + name + ".json", std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void registerJson(const std::string& name) {
    static std::map<std::string, std::string> texts;
    const std::string& text = texts[name] = readCorpus(name);
    if (text.empty()) {
        fmt::print(stderr, "missing corpus file {}\n", name);
        return;
    }
    const auto bytes = static_cast<int64_t>(text.size());

    benchmark::RegisterBenchmark(("read/" + name + "/ZEBJSON").c_str(),
                                 [&text, bytes](benchmark::State& state) {
                                     ZEBJSON json;
                                     for (auto _ : state) {
                                         auto value = json.objectWithStringError(text);
                                         if (!value) state.SkipWithError("read failed");
                                         benchmark::DoNotOptimize(value);
                                     }
                                     state.SetBytesProcessed(state.iterations() * bytes);
                                 });
    benchmark::RegisterBenchmark(
        ("read/" + name + "/RapidJSON").c_str(), [&text, bytes](benchmark::State& state) {
            for (auto _ : state) {
                rapidjson::Document document;
                document.Parse<rapidjson::kParseFullPrecisionFlag>(text.data(), text.size());
                if (document.HasParseError()) state.SkipWithError("read failed");
                benchmark::DoNotOptimize(document);
            }
            state.SetBytesProcessed(state.iterations() * bytes);
        });
    benchmark::RegisterBenchmark(("read/" + name + "/nlohmann").c_str(),
                                 [&text, bytes](benchmark::State& state) {
                                     for (auto _ : state) {
                                         auto document = nlohmann::ordered_json::parse(text);
                                         benchmark::DoNotOptimize(document);
                                     }
                                     state.SetBytesProcessed(state.iterations() * bytes);
                                 });

    benchmark::RegisterBenchmark(("write/" + name + "/ZEBJSON").c_str(),
                                 [&text, bytes](benchmark::State& state) {
                                     ZEBJSON json;
                                     kit::Value value = *json.objectWithStringError(text);
                                     for (auto _ : state) {
                                         auto written = json.stringWithObjectError(value);
                                         benchmark::DoNotOptimize(written);
                                     }
                                     state.SetBytesProcessed(state.iterations() * bytes);
                                 });
    benchmark::RegisterBenchmark(
        ("write/" + name + "/RapidJSON").c_str(), [&text, bytes](benchmark::State& state) {
            rapidjson::Document document;
            document.Parse<rapidjson::kParseFullPrecisionFlag>(text.data(), text.size());
            for (auto _ : state) {
                rapidjson::StringBuffer buffer;
                rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
                document.Accept(writer);
                benchmark::DoNotOptimize(buffer.GetString());
            }
            state.SetBytesProcessed(state.iterations() * bytes);
        });
    benchmark::RegisterBenchmark(("write/" + name + "/nlohmann").c_str(),
                                 [&text, bytes](benchmark::State& state) {
                                     auto document = nlohmann::ordered_json::parse(text);
                                     for (auto _ : state) {
                                         auto written = document.dump();
                                         benchmark::DoNotOptimize(written);
                                     }
                                     state.SetBytesProcessed(state.iterations() * bytes);
                                 });
}

void registerBase64() {
    static const kit::Value::Data data = [] {
        kit::Value::Data bytes(16 << 20);
        std::mt19937_64 random(42);
        for (auto& b : bytes) b = static_cast<uint8_t>(random());
        return bytes;
    }();
    static const std::string text = KBLStringEncoding::rfc4648Base64StringEncoding()->encode(data);
    const auto bytes = static_cast<int64_t>(data.size());

    benchmark::RegisterBenchmark("encode/base64/KBLStringEncoding", [bytes](benchmark::State& state) {
        auto base64 = KBLStringEncoding::rfc4648Base64StringEncoding();
        for (auto _ : state) {
            std::string out = base64->encode(data);
            benchmark::DoNotOptimize(out);
        }
        state.SetBytesProcessed(state.iterations() * bytes);
    });
    benchmark::RegisterBenchmark("encode/base64/OpenSSL", [bytes](benchmark::State& state) {
        for (auto _ : state) {
            // The output a caller needs: a string of the encoded text (the block call adds a NUL).
            std::string out(text.size() + 1, '\0');
            EVP_EncodeBlock(reinterpret_cast<unsigned char*>(out.data()), data.data(),
                            static_cast<int>(data.size()));
            out.pop_back();
            benchmark::DoNotOptimize(out);
        }
        state.SetBytesProcessed(state.iterations() * bytes);
    });
    benchmark::RegisterBenchmark("decode/base64/KBLStringEncoding", [bytes](benchmark::State& state) {
        auto base64 = KBLStringEncoding::rfc4648Base64StringEncoding();
        for (auto _ : state) {
            auto out = base64->decode(text);
            if (!out) state.SkipWithError("decode failed");
            benchmark::DoNotOptimize(out);
        }
        state.SetBytesProcessed(state.iterations() * bytes);
    });
    benchmark::RegisterBenchmark("decode/base64/OpenSSL", [bytes](benchmark::State& state) {
        for (auto _ : state) {
            kit::Value::Data out(text.size() / 4 * 3);
            int n = EVP_DecodeBlock(out.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                    static_cast<int>(text.size()));
            if (n < 0) state.SkipWithError("decode failed");
            benchmark::DoNotOptimize(out);
        }
        state.SetBytesProcessed(state.iterations() * bytes);
    });
}

// Prints as usual and keeps each benchmark's throughput for the ratios.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            auto it = run.counters.find("bytes_per_second");
            if (!run.error_occurred && it != run.counters.end())
                rates_[run.benchmark_name()] = it->second.value;
        }
    }

    // "ours / theirs" for each pair that ran; false when a target was missed.
    bool printRatios() const {
        bool allMet = true;
        auto ratio = [&](const std::string& ours, const std::string& theirs) -> std::optional<double> {
            auto a = rates_.find(ours), b = rates_.find(theirs);
            if (a == rates_.end() || b == rates_.end()) return std::nullopt;
            return a->second / b->second;
        };
        auto row = [&](const std::string& what, const std::string& ours, const std::string& theirs,
                       double target) {
            auto r = ratio(ours, theirs);
            if (!r) return;
            bool met = *r >= target;
            allMet = allMet && met;
            fmt::print("  {:<40} {:>6.2f}x   (target {:.1f}x{})\n", what, *r, target, met ? "" : ", MISSED");
        };
        fmt::print("\nRatios (throughput of ours / theirs; above 1 is faster):\n");
        for (const char* corpus : kCorpus) {
            for (const char* op : {"read", "write"}) {
                std::string base = fmt::format("{}/{}/", op, corpus);
                row(fmt::format("{} {} vs RapidJSON", op, corpus), base + "ZEBJSON", base + "RapidJSON", 0.5);
                row(fmt::format("{} {} vs nlohmann/json", op, corpus), base + "ZEBJSON", base + "nlohmann",
                    1.0);
            }
        }
        for (const char* op : {"encode", "decode"})
            row(fmt::format("{} base64 vs OpenSSL EVP", op), fmt::format("{}/base64/KBLStringEncoding", op),
                fmt::format("{}/base64/OpenSSL", op), 0.5);
        return allMet;
    }

private:
    std::map<std::string, double> rates_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    for (const char* corpus : kCorpus) registerJson(corpus);
    registerBase64();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    bool allMet = reporter.printRatios();
    fmt::print("{}\n", allMet ? "All targets met." : "Some targets missed; see the notes above.");
    benchmark::Shutdown();
    return 0;
}
