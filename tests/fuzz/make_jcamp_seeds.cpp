// Inputs that fuzz_jcamp starts from: small texts of every form that the reader knows.

#include <filesystem>
#include <fstream>
#include <string>

namespace {

const std::string kHead = "##TITLE=small\n##JCAMP-DX=5.00 $$ maker\n##DATA CLASS=XYDATA\n##.OBSERVE FREQUENCY=400\n"
                          "##.OBSERVE NUCLEUS=^1H\n##DATE=31/Jan/2006 09:24:52\n##DATA TYPE=NMR ";
const std::string kScale = "##FIRSTX=3200\n##LASTX=400\n##DELTAX=-400\n##XFACTOR=1\n##YFACTOR=0.5\n##NPOINTS=8\n";
const std::string kBruker = "$$ Bruker specific parameters\n##$SF= 400\n##$OFFSET= 12.5\n##$SW_p= 3200\n##$SI= 8\n"
                            "##$NC_proc= -2\n##$GRPDLY= 1.5\n##$P= (0..2)\n1 2 3\n##$NUC1= <1H>\n"
                            "$$ End of Bruker specific parameters\n";
const std::string kJeol = "$$ JEOL SPECIFIC PARAMETERS\n##$FREQU=\t3.2\t$$KHz\n##$SMTMS=\t3\n##$PD=\t4950\t$$ms\n"
                          "$$ END OF JEOL SPECIFIC PARAMETERS\n";
const std::string kPages =
    "##NTUPLES=NMR FID\n##SYMBOL=X, R, I, N\n##VAR_DIM=4, 4, 4, 2\n##UNITS=SECONDS, A, A,\n##FIRST=0,5, 10, 1, 1\n"
    "##LAST=0.003, 13, 4, 2\n##FACTOR=0.001, 2, 3, 1\n##PAGE=N=1\n##DATA TABLE=(X++(R..R)), XYDATA\n0A0JJJ\n0A3\n"
    "##PAGE=N=2\n##DATA TABLE=(X++(I..I)), XYDATA\n0 1 2 3 4\n##END NTUPLES=\n##END=\n";
const std::string kTable = "##XYDATA=(X++(Y..Y))\n7A00JT%\n4A02 +103-1 1.5E+01\n3?e2U $$ x\n##END=\n";

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) return 1;
    const std::filesystem::path folder = argv[1];
    std::filesystem::create_directories(folder);
    const std::string spectrum = kHead + "SPECTRUM\n##XUNITS=HZ\n" + kScale + kTable;
    const std::pair<const char*, std::string> seeds[] = {
        {"hertz", spectrum},
        {"ppm", kHead + "SPECTRUM\n##XUNITS=PPM\n" + kScale + kTable},
        {"bruker", kHead + "SPECTRUM\n##XUNITS=HZ\n" + kBruker + kScale + kTable},
        {"jeol", kHead + "SPECTRUM\n##XUNITS=HZ\n" + kJeol + kScale + kTable},
        {"reference", kHead + "SPECTRUM\n##.SHIFT REFERENCE=(INTERNAL, TMS, 3, 1.5)\n##XUNITS=HZ\n" + kScale + kTable},
        {"fid", kHead + "FID\n" + kPages},
        {"fid_bruker", kHead + "FID\n" + kBruker + kPages},
        {"link", "##TITLE=all\n##DATA TYPE=LINK\n" + kHead + "FID\n" + kPages + spectrum + "##END=\n"},
        {"list", "##TITLE=l\n##DATA TYPE=NMR SPECTRUM\n##XUNITS=PPM\n##FIRSTX=2\n##LASTX=1\n##NPOINTS=64\n"
                 "##XYPOINTS=(XY..XY)\n2,1\n1.9 2\n##END=\n"},
    };
    for (const auto& [name, text] : seeds) std::ofstream(folder / name, std::ios::binary) << text;
}
