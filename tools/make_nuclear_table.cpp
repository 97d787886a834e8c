// Writes the table of nuclides: data/system/Nuclear.dat, and the same text as the built-in copy.
//
//     make_nuclear_table <source folder>
//
// Sources
// - Spins, natural abundances, quadrupole moments and frequency ratios of the stable nuclides:
//   R. K. Harris, E. D. Becker, S. M. Cabral de Menezes, R. Goodfellow, P. Granger,
//   Pure Appl. Chem. 73 (2001) 1795; 80 (2008) 59 (IUPAC recommendations). The ratio Xi is the
//   frequency of the nuclide's reference compound where the protons of tetramethylsilane are at
//   100 MHz. Lanthanides, and those given with four digits, are measured or reckoned less exactly.
// - Radioactive nuclides and 180Ta: magnetic moments of N. J. Stone, At. Data Nucl. Data Tables 90
//   (2005) 75. Xi is that of a stable isotope of the same element times the ratio of the g factors,
//   so that the shielding drops out; without such an isotope 100 g / g(1H), with the digits of the
//   moment.
//
// The magnetogyric ratio is not kept here: it is Xi / 100 times that of the proton, with the sign of
// the moment. It is therefore that of the nuclide in its reference compound, up to 2 % off the bare
// nucleus for heavy elements, and up to 5 % for iridium and 235U, whose ratios are estimates.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

struct Row {
    const char* name;
    const char* element;
    const char* spin;
    const char* abundance;  // per cent; "0" for those that do not occur in nature
    int sign;               // of the magnetic moment
    const char* xi;         // the digits are those that are known
    const char* quadrupole; // fm^2; "0" for spin 1/2, and where no value is taken up
};

constexpr double kProtonGamma = 26.7522128; // 1e7 rad / (T s)

constexpr Row kRows[] = {
    {"1H", "HYDROGEN", "0.5", "99.9885", 1, "100.000000", "0"},
    {"2H", "HYDROGEN", "1", "0.0115", 1, "15.350609", "0.2860"},
    {"3H", "HYDROGEN", "0.5", "0", 1, "106.663974", "0"},
    {"3HE", "HELIUM", "0.5", "0.000137", -1, "76.179437", "0"},
    {"6LI", "LITHIUM", "1", "7.59", 1, "14.716086", "-0.0808"},
    {"7LI", "LITHIUM", "1.5", "92.41", 1, "38.863797", "-4.01"},
    {"9BE", "BERYLLIUM", "1.5", "100", -1, "14.051813", "5.288"},
    {"10B", "BORON", "3", "19.9", 1, "10.743658", "8.459"},
    {"11B", "BORON", "1.5", "80.1", 1, "32.083974", "4.059"},
    {"13C", "CARBON", "0.5", "1.07", 1, "25.145020", "0"},
    {"14N", "NITROGEN", "1", "99.632", 1, "7.226317", "2.044"},
    {"15N", "NITROGEN", "0.5", "0.368", -1, "10.136767", "0"},
    {"17O", "OXYGEN", "2.5", "0.038", -1, "13.556457", "-2.558"},
    {"19F", "FLUORINE", "0.5", "100", 1, "94.094011", "0"},
    {"21NE", "NEON", "1.5", "0.27", -1, "7.894296", "10.155"},
    {"22NA", "SODIUM", "3", "0", 1, "10.41", "0"},
    {"23NA", "SODIUM", "1.5", "100", 1, "26.451900", "10.4"},
    {"25MG", "MAGNESIUM", "2.5", "10.00", -1, "6.121635", "19.94"},
    {"27AL", "ALUMINIUM", "2.5", "100", 1, "26.056859", "14.66"},
    {"29SI", "SILICON", "0.5", "4.6832", -1, "19.867187", "0"},
    {"31P", "PHOSPHORUS", "0.5", "100", 1, "40.480742", "0"},
    {"33S", "SULFUR", "1.5", "0.76", 1, "7.676000", "-6.78"},
    {"35CL", "CHLORINE", "1.5", "75.78", 1, "9.797909", "-8.165"},
    {"36CL", "CHLORINE", "2", "0", 1, "11.494", "0"},
    {"37CL", "CHLORINE", "1.5", "24.22", 1, "8.155725", "-6.435"},
    {"39K", "POTASSIUM", "1.5", "93.2581", 1, "4.666373", "5.85"},
    {"40K", "POTASSIUM", "4", "0.0117", -1, "5.802018", "-7.30"},
    {"41K", "POTASSIUM", "1.5", "6.7302", 1, "2.561305", "7.11"},
    {"41CA", "CALCIUM", "3.5", "0", -1, "8.146", "0"},
    {"43CA", "CALCIUM", "3.5", "0.135", -1, "6.730029", "-4.08"},
    {"45SC", "SCANDIUM", "3.5", "100", 1, "24.291747", "-22.0"},
    {"47TI", "TITANIUM", "2.5", "7.44", -1, "5.637534", "30.2"},
    {"49TI", "TITANIUM", "3.5", "5.41", -1, "5.639037", "24.7"},
    {"50V", "VANADIUM", "6", "0.250", 1, "9.970309", "21.0"},
    {"51V", "VANADIUM", "3.5", "99.750", 1, "26.302948", "-5.2"},
    {"53CR", "CHROMIUM", "1.5", "9.501", -1, "5.652496", "-15.0"},
    {"53MN", "MANGANESE", "3.5", "0", 1, "25.65", "0"},
    {"55MN", "MANGANESE", "2.5", "100", 1, "24.789218", "33.0"},
    {"57FE", "IRON", "0.5", "2.119", 1, "3.237778", "0"},
    {"59CO", "COBALT", "3.5", "100", 1, "23.727074", "42.0"},
    {"60CO", "COBALT", "5", "0", 1, "13.64", "44"},
    {"61NI", "NICKEL", "1.5", "1.1399", -1, "8.936051", "16.2"},
    {"63CU", "COPPER", "1.5", "69.17", 1, "26.515473", "-22.0"},
    {"65CU", "COPPER", "1.5", "30.83", 1, "28.403693", "-20.4"},
    {"67ZN", "ZINC", "2.5", "4.10", 1, "6.256803", "15.0"},
    {"69GA", "GALLIUM", "1.5", "60.108", 1, "24.001354", "17.1"},
    {"71GA", "GALLIUM", "1.5", "39.892", 1, "30.496704", "10.7"},
    {"73GE", "GERMANIUM", "4.5", "7.73", -1, "3.488315", "-19.6"},
    {"75AS", "ARSENIC", "1.5", "100", 1, "17.122614", "31.4"},
    {"77SE", "SELENIUM", "0.5", "7.63", 1, "19.071513", "0"},
    {"79SE", "SELENIUM", "3.5", "0", -1, "5.18", "80"},
    {"79BR", "BROMINE", "1.5", "50.69", 1, "25.053980", "31.3"},
    {"81BR", "BROMINE", "1.5", "49.31", 1, "27.006518", "26.2"},
    {"83KR", "KRYPTON", "4.5", "11.49", -1, "3.847600", "25.9"},
    {"85KR", "KRYPTON", "4.5", "0", -1, "3.98", "44.3"},
    {"85RB", "RUBIDIUM", "2.5", "72.17", 1, "9.654943", "27.6"},
    {"87RB", "RUBIDIUM", "1.5", "27.83", 1, "32.720454", "13.35"},
    {"87SR", "STRONTIUM", "4.5", "7.00", -1, "4.333822", "33.5"},
    {"89Y", "YTTRIUM", "0.5", "100", -1, "4.900198", "0"},
    {"91ZR", "ZIRCONIUM", "2.5", "11.22", -1, "9.296298", "-17.6"},
    {"93NB", "NIOBIUM", "4.5", "100", 1, "24.476170", "-32.0"},
    {"95MO", "MOLYBDENUM", "2.5", "15.92", -1, "6.516926", "-2.2"},
    {"97MO", "MOLYBDENUM", "2.5", "9.55", -1, "6.653695", "25.5"},
    {"99TC", "TECHNETIUM", "4.5", "0", 1, "22.508326", "-12.9"},
    {"99RU", "RUTHENIUM", "2.5", "12.76", -1, "4.605151", "7.9"},
    {"101RU", "RUTHENIUM", "2.5", "17.06", -1, "5.161369", "45.7"},
    {"103RH", "RHODIUM", "0.5", "100", -1, "3.186447", "0"},
    {"105PD", "PALLADIUM", "2.5", "22.33", -1, "4.576100", "66.0"},
    {"107AG", "SILVER", "0.5", "51.839", -1, "4.047819", "0"},
    {"109AG", "SILVER", "0.5", "48.161", -1, "4.653533", "0"},
    {"111CD", "CADMIUM", "0.5", "12.80", -1, "21.215480", "0"},
    {"113CD", "CADMIUM", "0.5", "12.22", -1, "22.193175", "0"},
    {"113IN", "INDIUM", "4.5", "4.29", 1, "21.865755", "79.9"},
    {"115IN", "INDIUM", "4.5", "95.71", 1, "21.912629", "81.0"},
    {"115SN", "TIN", "0.5", "0.34", -1, "32.718749", "0"},
    {"117SN", "TIN", "0.5", "7.68", -1, "35.632259", "0"},
    {"119SN", "TIN", "0.5", "8.59", -1, "37.290632", "0"},
    {"121SB", "ANTIMONY", "2.5", "57.21", 1, "23.930577", "-36.0"},
    {"123SB", "ANTIMONY", "3.5", "42.79", 1, "12.959217", "-49.0"},
    {"123TE", "TELLURIUM", "0.5", "0.89", -1, "26.169742", "0"},
    {"125TE", "TELLURIUM", "0.5", "7.07", -1, "31.549769", "0"},
    {"127I", "IODINE", "2.5", "100", 1, "20.007486", "-71.0"},
    {"129I", "IODINE", "3.5", "0", 1, "13.314", "-49.8"},
    {"129XE", "XENON", "0.5", "26.44", -1, "27.810186", "0"},
    {"131XE", "XENON", "1.5", "21.18", 1, "8.243921", "-11.4"},
    {"133CS", "CAESIUM", "3.5", "100", 1, "13.116142", "-0.343"},
    {"135CS", "CAESIUM", "3.5", "0", 1, "13.880", "5.0"},
    {"137CS", "CAESIUM", "3.5", "0", 1, "14.43", "5.1"},
    {"133BA", "BARIUM", "0.5", "0", -1, "27.4", "0"},
    {"135BA", "BARIUM", "1.5", "6.592", 1, "9.934457", "16.0"},
    {"137BA", "BARIUM", "1.5", "11.232", 1, "11.112928", "24.5"},
    {"137LA", "LANTHANUM", "3.5", "0", 1, "13.7", "26"},
    {"138LA", "LANTHANUM", "5", "0.090", 1, "13.194300", "45.0"},
    {"139LA", "LANTHANUM", "3.5", "99.910", 1, "14.125641", "20.0"},
    {"141PR", "PRASEODYMIUM", "2.5", "100", 1, "30.62", "-5.89"},
    {"143ND", "NEODYMIUM", "3.5", "12.2", -1, "5.45", "-63.0"},
    {"145ND", "NEODYMIUM", "3.5", "8.3", -1, "3.36", "-33.0"},
    {"147SM", "SAMARIUM", "3.5", "14.99", -1, "4.17", "-25.9"},
    {"149SM", "SAMARIUM", "3.5", "13.82", -1, "3.44", "7.4"},
    {"151EU", "EUROPIUM", "2.5", "47.81", 1, "24.86", "90.3"},
    {"153EU", "EUROPIUM", "2.5", "52.19", 1, "10.98", "241.2"},
    {"155GD", "GADOLINIUM", "1.5", "14.80", -1, "3.07", "127.0"},
    {"157GD", "GADOLINIUM", "1.5", "15.65", -1, "4.03", "135.0"},
    {"159TB", "TERBIUM", "1.5", "100", 1, "24.04", "143.2"},
    {"161DY", "DYSPROSIUM", "2.5", "18.91", -1, "3.44", "250.7"},
    {"163DY", "DYSPROSIUM", "2.5", "24.90", 1, "4.82", "264.8"},
    {"165HO", "HOLMIUM", "3.5", "100", 1, "21.34", "358.0"},
    {"167ER", "ERBIUM", "3.5", "22.93", -1, "2.88", "356.5"},
    {"169TM", "THULIUM", "0.5", "100", -1, "8.29", "0"},
    {"171YB", "YTTERBIUM", "0.5", "14.28", 1, "17.499", "0"},
    {"173YB", "YTTERBIUM", "2.5", "16.13", -1, "4.821", "280.0"},
    {"175LU", "LUTETIUM", "3.5", "97.41", 1, "11.404", "349.0"},
    {"176LU", "LUTETIUM", "7", "2.59", 1, "8.131", "497.0"},
    {"177HF", "HAFNIUM", "3.5", "18.60", 1, "4.007", "336.5"},
    {"179HF", "HAFNIUM", "4.5", "13.62", -1, "2.517", "379.3"},
    {"180TA", "TANTALUM", "9", "0.012", 1, "9.49", "0"},
    {"181TA", "TANTALUM", "3.5", "99.988", 1, "11.989600", "317.0"},
    {"183W", "TUNGSTEN", "0.5", "14.31", 1, "4.166387", "0"},
    {"185RE", "RHENIUM", "2.5", "37.40", 1, "22.524600", "218.0"},
    {"187RE", "RHENIUM", "2.5", "62.60", 1, "22.751600", "207.0"},
    {"187OS", "OSMIUM", "0.5", "1.96", 1, "2.282331", "0"},
    {"189OS", "OSMIUM", "1.5", "16.15", 1, "7.765400", "85.6"},
    {"191IR", "IRIDIUM", "1.5", "37.3", 1, "1.718", "81.6"},
    {"193IR", "IRIDIUM", "1.5", "62.7", 1, "1.871", "75.1"},
    {"195PT", "PLATINUM", "0.5", "33.832", 1, "21.496784", "0"},
    {"197AU", "GOLD", "1.5", "100", 1, "1.729", "54.7"},
    {"199HG", "MERCURY", "0.5", "16.87", 1, "17.910822", "0"},
    {"201HG", "MERCURY", "1.5", "13.18", -1, "6.611583", "38.6"},
    {"203TL", "THALLIUM", "0.5", "29.524", 1, "57.123200", "0"},
    {"205TL", "THALLIUM", "0.5", "70.476", 1, "57.683838", "0"},
    {"207PB", "LEAD", "0.5", "22.1", 1, "20.920599", "0"},
    {"207BI", "BISMUTH", "4.5", "0", 1, "15.99", "0"},
    {"209BI", "BISMUTH", "4.5", "100", 1, "16.069288", "-51.6"},
    {"231PA", "PROTACTINIUM", "1.5", "0", 1, "24.0", "0"},
    {"233U", "URANIUM", "2.5", "0", 1, "4.2", "366"},
    {"235U", "URANIUM", "3.5", "0.72", -1, "1.8414", "493.6"},
    {"237NP", "NEPTUNIUM", "2.5", "0", 1, "22.5", "0"},
    {"239PU", "PLUTONIUM", "0.5", "0", 1, "7.3", "0"},
    {"241AM", "AMERICIUM", "2.5", "0", 1, "11.3", "0"},
    {"243AM", "AMERICIUM", "2.5", "0", 1, "10.8", "0"},
};

/// Digits of Xi and two more, so that the ratio of two of them is that of the frequencies.
int GammaDigits(const char* xi)
{
    int digits = 2;
    for (const char* c = xi; *c != '\0'; ++c) digits += *c != '.' ? 1 : 0;
    return digits < 9 ? digits : 9;
}

std::string Line(const Row& row)
{
    std::array<char, 160> text{};
    const double gamma = row.sign * kProtonGamma * std::strtod(row.xi, nullptr) / 100;
    std::snprintf(text.data(), text.size(), "%s;%s;%s;%.*g;%s;%s;%s;\n", row.name, row.spin, row.abundance,
                  GammaDigits(row.xi), gamma, row.xi, row.quadrupole, row.element);
    return text.data();
}

/// An empty name makes the first line one that readers pass over; the table leaves room for one.
std::string TableText()
{
    std::string text =
        "; name; spin; abundance/%; gamma/(1e7 rad/(T s)); Xi/MHz; Q/fm2; element. "
        "Sources: Pure Appl. Chem. 73 (2001) 1795, 80 (2008) 59; At. Data Nucl. Data Tables 90 (2005) 75\n";
    for (const Row& row : kRows) text += Line(row);
    return text;
}

bool WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    return static_cast<bool>(file.flush());
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_nuclear_table <source folder>\n");
        return 2;
    }
    const std::string root = argv[1];
    const std::string table = TableText();
    const bool written =
        WriteFile(root + "/data/system/Nuclear.dat", table) &&
        WriteFile(root + "/src/core/nuclear_builtin.inc",
                  "// Written by tools/make_nuclear_table.cpp: change the table there.\nR\"(" + table + ")\"\n");
    std::printf("%zu nuclides\n", std::size(kRows));
    return written ? 0 : 6;
}
