// bench_dtd FILE...: measures the steps of a DTD import in one process: parsing with ordering, and writing.
#include "Files/File.h"
#include "Import/Dtd/DTDMsg.h"

#include <benchmark/benchmark.h>

#include <filesystem>

namespace {

void import(benchmark::State& state, const CString& text)
{
    for (auto _ : state) {
        DTDMessage message;
        benchmark::DoNotOptimize(message.parseData(text, "\\"));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
}

void writeDocument(benchmark::State& state, const CString& text)
{
    DTDMessage message;
    message.parseData(text, "\\");
    std::size_t bytes = 0;
    for (auto _ : state)
        message.writeXML([&bytes](std::string_view piece) { bytes += piece.size(); });
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const CString name = std::filesystem::path(argv[i]).stem();
        CString text;
        if (readFile(argv[i], text) != FileCause::none)
            return 1;
        benchmark::RegisterBenchmark(("import/" + name).c_str(), import, text)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("write/" + name).c_str(), writeDocument, text)->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
}
