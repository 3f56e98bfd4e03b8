// What equations and variables cost: the time per term and per variable must not depend on how many
// there are.
#include "HeapCounter.h"
#include "KARCDSIntArray.h"
#include "KARCDSString.h"
#include "KARMPDeserializer.h"
#include "KARMPEntityTable.h"
#include "KARMPSerializer.h"
#include "KARMPVariable.h"
#include "KARWBEquationPrinter.h"
#include "KARWBFactory.h"
#include "KARWBModel.h"
#include "KARWBParser.h"
#include "KARWBParserMessenger.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

/// "0.5*x0 + 0.5*x1 + ... = 0" with a hundred variables.
std::string SumOf(std::int64_t terms)
{
    std::string text;
    for (std::int64_t i = 0; i < terms; ++i)
        text += (i == 0 ? "0.5*x" : " + 0.5*x") + std::to_string(i % 100);
    return text + " = 0";
}

void ParseEquation(benchmark::State& state)
{
    const std::string text = SumOf(state.range(0));
    while (state.KeepRunningBatch(state.range(0))) {
        KARWBModel model;
        KARCDSIntArray ids;
        KARWBParserMessenger messenger;
        if (KARFailed(KARWBParser::Parse(text, model, ids, messenger, nullptr)))
            state.SkipWithError("the equation does not parse");
    }
}
BENCHMARK(ParseEquation)->Arg(1'000)->Arg(10'000)->Arg(100'000);

void PrintEquation(benchmark::State& state)
{
    KARWBModel model;
    KARCDSIntArray ids;
    KARWBParserMessenger messenger;
    KARWBFactory factory;
    if (KARFailed(KARWBParser::Parse(SumOf(state.range(0)), model, ids, messenger, nullptr)) ||
        KARFailed(model.FillFactory(&factory, ids, 0, nullptr, nullptr)))
        state.SkipWithError("the equation does not parse");
    const KARWBEquation* equation = factory.GetEquationById(ids[0]);
    while (state.KeepRunningBatch(state.range(0))) {
        KARCDSString printed;
        KARWBEquationPrinter::Print(equation, printed);
        benchmark::DoNotOptimize(printed);
    }
}
BENCHMARK(PrintEquation)->Arg(1'000)->Arg(10'000)->Arg(100'000);

class Writer : public KARMPSerializer
{
public:
    KARStatus Render(std::wstring&) const override { return KARNotImplemented; }
    KARStatus Save(const char*) const override { return KARNotImplemented; }

protected:
    KARMPSerializer* CreateChildElement() override { return new Writer; }
};

class Reader : public KARMPDeserializer
{
public:
    using KARMPDeserializer::AddAttributeValue;
    using KARMPDeserializer::AddElement;
    using KARMPDeserializer::SetId;
    using KARMPDeserializer::SetValue;
    std::wstring Location() const override { return {}; }

    Reader& Add(std::wstring_view name)
    {
        auto* child = new Reader;
        child->SetId(name);
        AddElement(name, child);
        return *child;
    }
};

std::vector<QOBSharedHandle<KARMPVariable>> MakeVariables(std::int64_t count)
{
    std::vector<QOBSharedHandle<KARMPVariable>> variables;
    for (std::int64_t i = 0; i < count; ++i) {
        variables.push_back(KARMPVariable::create(L"Angle"));
        variables.back()->SetValue(0.5);
        variables.back()->SetMaxValue(1.5);
    }
    return variables;
}

void WriteVariable(benchmark::State& state)
{
    const auto variables = MakeVariables(state.range(0));
    const HeapCounter heap(state);
    while (state.KeepRunningBatch(state.range(0))) {
        Writer list;
        for (const auto& variable : variables)
            variable->Serialize(&list);
    }
}
BENCHMARK(WriteVariable)->Arg(1'000)->Arg(100'000);

void Fill(Reader& variable)
{
    variable.SetId(L"Variable");
    variable.AddAttributeValue(L"id", L"v1");
    variable.AddAttributeValue(L"name", L"Angle");
    variable.AddAttributeValue(L"isActive", L"yes");
    Reader& value = variable.Add(L"Value");
    value.Add(L"HasValue").SetValue(true);
    value.Add(L"Value").SetValue(0.5);
    variable.Add(L"MaxValue").Add(L"HasMaxValue").SetValue(false);
    variable.Add(L"MinValue").Add(L"HasMinValue").SetValue(false);
    variable.Add(L"MaxLimitRestitution").Add(L"HasMaxLimitRestitution").SetValue(false);
    variable.Add(L"MinLimitRestitution").Add(L"HasMinLimitRestitution").SetValue(false);
    variable.Add(L"PhysicalQuantity").SetValue(L"Angle");
    variable.Add(L"Type").SetValue(L"Free");
}

void ReadVariable(benchmark::State& state)
{
    std::vector<std::unique_ptr<Reader>> nodes;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        nodes.push_back(std::make_unique<Reader>());
        Fill(*nodes.back());
    }
    const KARMPEntityTable entities;
    const HeapCounter heap(state);
    while (state.KeepRunningBatch(state.range(0)))
        for (const auto& node : nodes)
            KARMPVariable::create(L"")->Deserialize(node.get(), entities);
}
BENCHMARK(ReadVariable)->Arg(1'000)->Arg(100'000);

} // namespace
