// Uses the installed libraries the way a program outside of the project does.

#include "KARMPEntities.h"
#if __has_include("KARMPModel.h")
#    include "KARMPModel.h"
#endif

#include <cstdio>
#include <cstdlib>

namespace {

class ReportCounter : public KARMPFailedCheckListener
{
public:
    void OnFailedCheck(const char*, int) override { ++count; }

    int count = 0;
};

void Require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "consumer: failed: %s\n", what);
        std::exit(1);
    }
}

} // namespace

int main()
{
    KARUnicodeString number;
    Require(number.BuildFromNum(42) == 1 && number == "42", "the platform library works");

    for (const std::string& name : KARMPFactory::GetClassNames()) {
        QOBSharedHandle<KARMPEntity> entity;
        Require(KARMPFactory::Create(name, entity) == KARSuccess && entity, name.c_str());
    }

    ReportCounter reports;
    QOBSharedHandle<KARMPEntity> body;
    Require(KARMPFactory::Create("KARMPBody", body) == KARSuccess && reports.count == 0,
            "a body is made without a report");
    QOBSharedHandle<KARMPEntity> none;
    Require(KARFailed(KARMPFactory::Create("NoSuchClass", none)) && reports.count == 1,
            "an unknown class is reported to a listener of the program");

#if __has_include("KARMPModel.h")
    karmp::model::Model model("Pendulum");
    const auto rod = model.Body("Rod", karmp::model::Rod(1.0, {}, {1.0, 0.0, 0.0}));
    model.Joint<KARMPRevolute>("Pivot", model.Ground(), rod, {0.0, 0.0, 0.0});
    Require(model.Problems().empty() && model.Check().items.empty(), "a model is built");
#endif
    std::printf("%zu classes can be created\n", KARMPFactory::GetClassNames().size());
    return 0;
}
