#include <quillon/chemistry/Elements.h>

#include <array>

namespace quillon {

namespace {

// Exact isotope masses (u) and representative natural abundances, as published in the reference
// table of atomic weights and isotopic compositions. Only isotopes with a measurable natural
// abundance are listed.
constexpr IsotopeData kHydrogen[] = {{1, 1.00782503223, 0.999885}, {2, 2.01410177812, 0.000115}};
constexpr IsotopeData kBoron[] = {{10, 10.01293695, 0.199}, {11, 11.00930536, 0.801}};
constexpr IsotopeData kCarbon[] = {{12, 12.0, 0.9893}, {13, 13.00335483507, 0.0107}};
constexpr IsotopeData kNitrogen[] = {{14, 14.00307400443, 0.99636}, {15, 15.00010889888, 0.00364}};
constexpr IsotopeData kOxygen[] = {
    {16, 15.99491461957, 0.99757}, {17, 16.99913175650, 0.00038}, {18, 17.99915961286, 0.00205}};
constexpr IsotopeData kFluorine[] = {{19, 18.99840316273, 1.0}};
constexpr IsotopeData kSodium[] = {{23, 22.9897692820, 1.0}};
constexpr IsotopeData kMagnesium[] = {
    {24, 23.985041697, 0.7899}, {25, 24.985836976, 0.1000}, {26, 25.982592968, 0.1101}};
constexpr IsotopeData kSilicon[] = {
    {28, 27.97692653465, 0.92223}, {29, 28.97649466490, 0.04685}, {30, 29.973770136, 0.03092}};
constexpr IsotopeData kPhosphorus[] = {{31, 30.97376199842, 1.0}};
constexpr IsotopeData kSulfur[] = {{32, 31.9720711744, 0.9499},
                                   {33, 32.9714589098, 0.0075},
                                   {34, 33.967867004, 0.0425},
                                   {36, 35.96708071, 0.0001}};
constexpr IsotopeData kChlorine[] = {{35, 34.968852682, 0.7576}, {37, 36.965902602, 0.2424}};
constexpr IsotopeData kPotassium[] = {
    {39, 38.9637064864, 0.932581}, {40, 39.963998166, 0.000117}, {41, 40.9618252579, 0.067302}};
constexpr IsotopeData kCalcium[] = {{40, 39.962590863, 0.96941}, {42, 41.95861783, 0.00647},
                                    {43, 42.95876644, 0.00135},  {44, 43.95548156, 0.02086},
                                    {46, 45.9536890, 0.00004},   {48, 47.95252276, 0.00187}};
constexpr IsotopeData kIron[] = {{54, 53.93960899, 0.05845},
                                 {56, 55.93493633, 0.91754},
                                 {57, 56.93539284, 0.02119},
                                 {58, 57.93327443, 0.00282}};
constexpr IsotopeData kSelenium[] = {{74, 73.922475934, 0.0089}, {76, 75.919213704, 0.0937},
                                     {77, 76.919914154, 0.0763}, {78, 77.91730928, 0.2377},
                                     {80, 79.9165218, 0.4961},   {82, 81.9166995, 0.0873}};
constexpr IsotopeData kBromine[] = {{79, 78.9183376, 0.5069}, {81, 80.9162897, 0.4931}};
constexpr IsotopeData kIodine[] = {{127, 126.9044719, 1.0}};

constexpr std::array kElements = {
    ElementData{"H", 1, kHydrogen},   ElementData{"B", 5, kBoron},
    ElementData{"C", 6, kCarbon},     ElementData{"N", 7, kNitrogen},
    ElementData{"O", 8, kOxygen},     ElementData{"F", 9, kFluorine},
    ElementData{"Na", 11, kSodium},   ElementData{"Mg", 12, kMagnesium},
    ElementData{"Si", 14, kSilicon},  ElementData{"P", 15, kPhosphorus},
    ElementData{"S", 16, kSulfur},    ElementData{"Cl", 17, kChlorine},
    ElementData{"K", 19, kPotassium}, ElementData{"Ca", 20, kCalcium},
    ElementData{"Fe", 26, kIron},     ElementData{"Se", 34, kSelenium},
    ElementData{"Br", 35, kBromine},  ElementData{"I", 53, kIodine},
};

} // namespace

const IsotopeData& ElementData::MostAbundantIsotope() const {
    const IsotopeData* best = &isotopes.front();
    for (const IsotopeData& isotope : isotopes) {
        if (isotope.abundance > best->abundance) {
            best = &isotope;
        }
    }
    return *best;
}

std::span<const ElementData> CElements::All() {
    return kElements;
}

const ElementData* CElements::Find(std::string_view symbol) {
    for (const ElementData& element : kElements) {
        if (element.symbol == symbol) {
            return &element;
        }
    }
    return nullptr;
}

int CElements::IndexOf(const ElementData* element) {
    if (element < kElements.data() || element >= kElements.data() + kElements.size()) {
        return -1;
    }
    return static_cast<int>(element - kElements.data());
}

} // namespace quillon
