// nmr1d-bench [--json] [TOPIC...]: runs the registered topics, all without a name, and prints their rows.

#include "bench.h"

#include "fid/fft.h"

#include <fmt/format.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <string_view>
#include <utility>

namespace nmr::bench {
namespace {

std::map<std::string, Measure>& Topics()
{
    static std::map<std::string, Measure> topics;
    return topics;
}

std::string ProcessorName()
{
    std::ifstream file("/proc/cpuinfo");
    for (std::string line; std::getline(file, line);) {
        const auto colon = line.find(": ");
        if (line.starts_with("model name") && colon != std::string::npos) return line.substr(colon + 2);
    }
    return "unknown";
}

bool Within(const BenchRow& row)
{
    return row.limit <= 0.0 || row.measured <= row.limit;
}

void PrintTopic(const std::string& topic, const std::vector<BenchRow>& rows)
{
    fmt::print("\n{}\n", topic);
    for (const BenchRow& row : rows) {
        const auto limit = row.limit > 0.0 ? fmt::format("{:g}", row.limit) : std::string();
        const auto verdict = row.limit <= 0.0 ? "" : Within(row) ? "ok" : "OVER";
        fmt::print("  {:<40} {:>10.4g} {:<7} {:>6} {:<4}  {}\n", row.name, row.measured, row.unit, limit, verdict,
                   row.note);
    }
    std::fflush(stdout);
}

std::string Quoted(std::string_view text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        if (static_cast<unsigned char>(c) >= 0x20) out += c;
    }
    return out + '"';
}

std::string JsonRow(const std::string& topic, const BenchRow& row)
{
    const auto limit = row.limit > 0.0 ? fmt::format("{}", row.limit) : std::string("null");
    return fmt::format(
        R"({{"topic": {}, "name": {}, "measured": {}, "unit": {}, "limit": {}, "within": {}, "note": {}}})",
        Quoted(topic), Quoted(row.name), row.measured, Quoted(row.unit), limit, Within(row), Quoted(row.note));
}

enum class Output { table, json };

void RunTopics(Output output, const std::vector<std::string>& wanted)
{
    const auto processor = ProcessorName();
    if (output == Output::table)
        fmt::print("Processor: {}, vector set: {}\n{:<42} {:>10} {:<7} {:>6}\n", processor, FFT_Vector_Set(), "",
                   "measured", "", "limit");
    else
        fmt::print("{{\"processor\": {}, \"vector_set\": {}, \"rows\": [", Quoted(processor), Quoted(FFT_Vector_Set()));
    std::string_view separator = "\n";
    for (const auto& [topic, measure] : Topics()) {
        if (!wanted.empty() && std::ranges::find(wanted, topic) == wanted.end()) continue;
        const auto rows = measure();
        if (output == Output::table) {
            PrintTopic(topic, rows);
            continue;
        }
        for (const BenchRow& row : rows) fmt::print("{}{}", std::exchange(separator, ",\n"), JsonRow(topic, row));
    }
    if (output == Output::json) fmt::print("\n]}}\n");
}

} // namespace

bool Register(std::string topic, Measure measure)
{
    return Topics().emplace(std::move(topic), std::move(measure)).second;
}

std::vector<double> BestMsInTurns(int times, const std::vector<Contender>& contenders)
{
    std::vector<double> best(contenders.size(), std::numeric_limits<double>::infinity());
    for (int turn = 0; turn < times; ++turn) {
        for (std::size_t i = 0; i < contenders.size(); ++i) {
            contenders[i].prepare();
            contenders[i].run(); // its tables come back into the cache
            contenders[i].prepare();
            best[i] = std::min(best[i], OnceMs(contenders[i].run));
        }
    }
    return best;
}

} // namespace nmr::bench

int main(int argc, char** argv)
{
    using namespace nmr::bench;
    auto output = Output::table;
    std::vector<std::string> wanted;
    for (const std::string& argument : std::vector<std::string>(argv + 1, argv + argc)) {
        if (argument == "--json")
            output = Output::json;
        else if (!argument.starts_with('-') && Topics().contains(argument))
            wanted.push_back(argument);
        else {
            fmt::print(stderr, "Usage: nmr1d-bench [--json] [TOPIC...]\nTopics:");
            for (const auto& topic : Topics()) fmt::print(stderr, " {}", topic.first);
            fmt::print(stderr, "\n");
            return 2;
        }
    }
    RunTopics(output, wanted);
    return 0;
}
