// Inputs that fuzz_lines starts from: records, tables in all forms, parameters of a console.

#include "fuzz/seed_files.h"
#include "samples/samples.h"
#include "samples/vendor_samples.h"

using namespace nmr::samples;

int main(int argc, char** argv)
{
    const std::vector<long> values{100, 105, 105, 105, 98, 98, -3, -300, 0, 7};
    std::vector<std::string> seeds{
        std::string(1, '\0') +
            "  ##TITLE= a\tb\n##.OBSERVE FREQUENCY=399,65\n$$ Bruker\n##$P= (0..3)\n1 2 3\n##$T= <a b> $$us\n",
        std::string(1, '\4') + nmr::test::SampleProcpar({{"array", {"\"(d2,p1),pw\""}, 2}}), "\1 1.5E+03 ?",
        "\2"
        "83920E4420E5294@"};
    for (const TableForm form : {TableForm::affn, TableForm::pac, TableForm::sqz, TableForm::dif, TableForm::difdup})
        seeds.push_back("\3" + TableText(values, form));
    return nmr::test::WriteSeeds(argc, argv, seeds);
}
