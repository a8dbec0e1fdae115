// bench_xml FILE...: measures the layers of reading XML, step by step: the bare callbacks, the walk of the XML data
// importer, the tree, and writing the tree.
#include "Import/XmlData/XMLDataWalk.h"
#include "Xml/Dom.h"
#include "Xml/XmlParser.h"

#include <benchmark/benchmark.h>

#include <filesystem>

namespace {

// The parser's calls alone, as the baseline of the other steps.
struct Ignore : XmlHandler
{
    void startElement(XmlName, XmlAttributes, const XmlScope&) override {}
    void endElement() override {}
};

void setRate(benchmark::State& state, const CString& file)
{
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * std::filesystem::file_size(file)));
}

void callbacks(benchmark::State& state, const CString& file)
{
    for (auto _ : state) {
        Ignore handler;
        benchmark::DoNotOptimize(parseXmlFile(file, handler));
    }
    setRate(state, file);
}

void walk(benchmark::State& state, const CString& file)
{
    for (auto _ : state) {
        SourceReport report;
        XMLDataWalk handler(report, false);
        handler.beginDocument(0);
        benchmark::DoNotOptimize(parseXmlFile(file, handler));
    }
    setRate(state, file);
}

void tree(benchmark::State& state, const CString& file)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(IXMLDOMDocument::create().load(file));
    setRate(state, file);
}

void serialize(benchmark::State& state, const CString& file)
{
    const IXMLDOMDocument document = IXMLDOMDocument::create();
    document.load(file);
    for (auto _ : state)
        benchmark::DoNotOptimize(document.xml());
    setRate(state, file);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const CString file = argv[i], name = std::filesystem::path(file).stem();
        benchmark::RegisterBenchmark(("callbacks/" + name).c_str(), callbacks, file)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("walk/" + name).c_str(), walk, file)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("tree/" + name).c_str(), tree, file)->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(("serialize/" + name).c_str(), serialize, file)->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks();
}
