// The table of GUIDs, and catalogue entries made from it.
#include "effects/am/library/amCatalog.h"

#include "effects/am/library/amDefaults.h"
#include "effects/am/library/amFacts.h"
#include "effects/am/library/amFilters.h"

#include <algorithm>
#include <map>

namespace KEXSDK {

namespace {

constexpr AmCatalogRow AmEffectCatalog[] = {
    {61, "Snow", "A1080F1E-9F4E-41ee-B0C2-4E9BD4D49B0D", nullptr},
    {1, "AmNoise", "EA2DCED2-D88D-402c-9D70-108FAA8C76D8", nullptr},
    {2, "AmMosaic", "AEA88997-7954-4974-8E58-457073A0BC99", nullptr},
    {3, "AmPlash", "4E7B2717-D7A7-4725-83FF-E3705512F8E8", nullptr},
    {4, "FilmGrain", "6EEFFABB-4894-446c-8187-3D9D9922E3A9", nullptr},
    {5, "Exposure", "A73E6F11-FE9B-477e-BF7C-B9DB88003BD9", nullptr},
    {6, "Emboss", "83BECB59-BA1F-4a4d-9CE1-B918E7F026B0", nullptr},
    {7, "BChannel", "7B4A1028-03F3-46cf-958C-C0596EFA6E8E", nullptr},
    {8, "GChannel", "1DAD6175-1CE0-4b44-86AA-9243C7CE7CDF", nullptr},
    {9, "RChannel", "4552E5F7-011A-4378-99DC-3D8BD5C83426", nullptr},
    {10, "AChannel", "F7C9BCF4-9734-47f4-BBEB-9BAF1BE12600", nullptr},
    {11, "GrayScale", "E158CA95-1927-407f-9D4C-A199EA98ED3D", nullptr},
    {12, "Binary", "040AC214-A380-4129-8F48-9B9623CDF3F4", nullptr},
    {13, "XRays", "CA4F3A55-8308-406f-AD90-6652AD8A9027", nullptr},
    {14, "Negative", "949D6D25-CA9B-42b9-A7A5-5D99306FFEA8", nullptr},
    {15, "Thermal", "AC3E13AF-60A8-4066-B8E6-C02D82DBB0C3", nullptr},
    {16, "Thitone", "3F6EDCA3-CEF2-4d62-9728-A88B692AC526", nullptr},
    {17, "Thitone2", "6B09897C-0818-4adc-B068-275F31541802", nullptr},
    {18, "Solarize", "77FEDA0E-29B1-45ba-B5F7-7A50F1463701", nullptr},
    {19, "FlipLR", "CD9DCD75-DC0E-4f7a-8484-52778D9FB202", nullptr},
    {20, "FlipTB", "7ADBCFB3-ACCF-4c5c-B188-A7537AED400D", nullptr},
    {21, "FlipAll", "9B6A315E-2CEA-42b0-ABB2-A20FB790A433", nullptr},
    {22, "MirrorLR", "4D34F72D-3307-4f4a-9BED-72E6B7B8FF99", nullptr},
    {23, "MirrorTB", "BE80CF63-1E35-4b1f-92A3-B1FACD636AEA", nullptr},
    {24, "SunShine", "E05DAB18-F084-445b-BEA6-9EE4D7E5249B", nullptr},
    {25, "Cold", "1F638635-9117-4b4f-91D2-477E7F87E04E", nullptr},
    {26, "Cool", "871971A5-E35C-4082-90B5-80028BE36F2E", nullptr},
    {27, "Warm", "C460AE11-EF42-4b44-B660-0C90566F2862", nullptr},
    {28, "Hot", "97E29015-F24F-411e-8EE5-A82C4F75EDCF", nullptr},
    {29, "OneColor", "972A1027-9F87-4899-8309-999FE80BE5CA", nullptr},
    {30, "Brown", "C796A702-8C5C-46cd-89A5-D9320AB223F7", nullptr},
    {31, "Chocolate", "9B478F78-6FE4-46b1-AF38-7C83100B7E5D", nullptr},
    {32, "Wheat", "E64DFBF0-8148-490a-9D30-3D1F9DA856A4", nullptr},
    {33, "Linen", "7E752FC7-A265-4547-9B51-80489BB77AFE", nullptr},
    {34, "Purple", "19489B92-8D48-45a8-A6AE-C8F6F2F1D30E", nullptr},
    {35, "Olive", "0F5B42A1-695C-4a9b-8779-D739B1CDA5A0", nullptr},
    {36, "Teal", "E1579294-2A5C-425b-98A5-73059E7446C1", nullptr},
    {37, "Blue", "78E6798F-D1DE-457b-9E7B-2B4143EF85F4", nullptr},
    {38, "Green", "744B39F9-DD2E-4240-B9EE-7D89DDBF936A", nullptr},
    {39, "Red", "BCD68DC5-51F0-4172-997C-8F44F72EBDD4", nullptr},
    {40, "Yellow", "0CB2F411-1826-4ffb-9FAD-FB069F1CC43C", nullptr},
    {41, "Fuchsia", "FCAD5000-5138-4ab7-A4D5-95D341DF9248", nullptr},
    {42, "Cyan", "1439AA44-8C10-48f4-B4F2-8730B762E3F4", nullptr},
    {43, "Hoodwink", "F9BE7032-E538-4479-998D-BF28B82D58CD", nullptr},
    {44, "OldMovie", "E4076D5F-116B-4dad-B1CE-EF9736498734", nullptr},
    {45, "1839", "8D52123A-ADC8-42ad-B644-BBE48EAD44E7", nullptr},
    {46, "1920", "8CF2F56C-27AD-4cdd-8ACC-D697ED36170C", nullptr},
    {47, "70s", "1A09570B-8B15-444b-A074-33685EE7E086", nullptr},
    {48, "Siena", "8AFBAC44-E0E6-4cf0-99BC-398F544F9400", nullptr},
    {49, "Japaness", "30055315-346C-4ed0-BF83-572605B2CF59", nullptr},
    {50, "CyanBlue", "E07018F9-29D3-441c-8531-CEA677B10339", nullptr},
    {51, "LomoMovie", "234F2F06-5AA0-4307-BEF2-D3CA03747E2E", nullptr},
    {52, "CrossProcess", "0172CFF4-7FE5-46fe-91E6-6F6BFCD0D23F", nullptr},
    {53, "Retro", "EFFE7C7D-AA0F-4cb0-8C1C-CDE05D04BC97", nullptr},
    {54, "GrayRetro", "65C00650-633C-45f0-809D-6A605FAEE1A4", nullptr},
    {55, "Cinnamon", "971E3F12-8855-4a81-9C8F-3603A9F735DC", nullptr},
    {56, "XPro", "9B6C332D-A124-44fa-B1B9-F0ECE06FE088", nullptr},
    {57, "Tcvga", "43976442-24D1-415c-B8BD-E571AE3D235F", nullptr},
    {58, "Cartoon", "F0A59856-167B-4164-A721-39F5330C6F94", nullptr},
    {59, "Lnk", "1CF75407-3C18-4c3b-A5CC-E51C919E14AA", nullptr},
    {60, "Star", "9F0E5279-EA88-427a-BC51-219E916EA8E7", nullptr},
    {62, "Bubble", "FD40DFF8-3C71-416a-970D-0531586C5DA2", nullptr},
    {63, "GetColor", "309BBE5F-12C8-4ded-9689-A69896691A87", nullptr},
    {65, "FourSeason", "FB66DCAA-F85E-4be4-9470-9D6771AE26B8", nullptr},
    {66, "PhotoWithSkecth", "FC9825B7-ADE7-41ba-8B83-B6C8085E2E39", nullptr},
    {67, "SunFlower", "534C741C-4450-4ea4-9D8C-BD54AD7ED668", nullptr},
    {68, "Romantic", "06540EAC-C188-426e-952D-7DD97435F6F9", nullptr},
    {69, "Holiday", "8B086E1E-BB01-4f3e-934B-5DB4ADA2567F", nullptr},
    {71, "SimpleElegent", "94C674C7-B853-4b72-A035-46412DA6B447", nullptr},
    {72, "BW_Yellow", "BECC0DB2-67E8-4a9c-BFFB-B1AFD8351811", nullptr},
    {73, "BW_Noise", "3E3535CE-7881-4e9e-A1EE-D5220E323EB7", nullptr},
    {74, "PurpleLomo", "56F86BED-AA95-4fb1-8DC8-49A5C15A7111", nullptr},
    {75, "Freshness", "740E5BD0-1BAD-4688-AF49-946FAE0F2E7A", nullptr},
    {76, "BeautifyImg", "D3FFB279-0581-4c3c-8CAC-CB2E1D148614", nullptr},
    {77, "FuzzyImg", "004AF9BF-A233-4f3a-A14F-2E475C732091", nullptr},
    {78, "Vintage_Gloaming", "08ECFF4C-CD36-4c89-9D4D-F515451BB2DB", nullptr},
    {79, "FreshNew", "3F68EC3C-4003-488c-8BD4-4D6CA41E85C5", nullptr},
    {80, "BlueTears", "23ED6584-3EB2-4451-80CE-89D3529DE5C8", nullptr},
    {81, "PurpleLove", "F944258F-0E51-4f7b-979F-91E3E826E4FC", nullptr},
    {82, "Aegean", "154FD34E-0DF8-481f-A99C-4913DDC4938A", nullptr},
    {86, "Rainbow", "B8418684-23EF-4e0d-94C4-6F5F3FA62666", nullptr},
    {87, "Aibao", "EE53FABA-42CD-486e-AAF7-A3549401CA9E", nullptr},
    {88, "Rainbow2", "986D9EB4-F480-4757-B661-10C87DB2EFCB", nullptr},
    {89, "Jigsaw_A", "52535B89-F700-43c1-992F-C7CB8D3FCE48", nullptr},
    {90, "Jigsaw_B", "89AD1E6D-CF9D-4280-BE45-9D4DF7874E18", nullptr},
    {91, "Jigsaw_C", "269A3DB6-D705-43c3-BC2C-57D28FEB23B6", nullptr},
    {92, "Jigsaw_D", "590333AC-70B7-43b4-B854-AA12815C8A55", nullptr},
    {93, "Jigsaw_E", "EADA816C-CC38-4964-AE9D-6030F9A1E705", nullptr},
    {94, "Jigsaw_F", "AB623CB4-A037-4734-ABE3-E11528C2F878", nullptr},
    {95, "VignetteRadius", "B708C1BB-39A4-410b-A622-8FBC323FD2D7", nullptr},
    {96, "Bad_TVSignal", "9B5EFE7A-C286-406e-A286-681142AC8B66", nullptr},
    {97, "Kaleidoscope", "A5394086-2AE7-4df3-B85B-0D69E4594338", nullptr},
    {1026, "Sharp", "6D784E7B-8337-4578-BCAB-DA6C4B4E6BE3", nullptr},
    {1027, "Blur2", "1FF3A847-984D-4239-95A5-3874F722C46E", nullptr},
    {1029, "Neon", "F338F0FA-9820-4b05-B118-72353D92B889", nullptr},
    {1028, "Sketch", "49BBB715-2B1E-4cf3-9A35-3C35ADFE0382", nullptr},
    {1030, "Shake", "8A6488D5-926F-4956-ACC6-4969C602D33C", nullptr},
    {1031, "Ripple", "93A5CE9C-12A6-4860-A5DE-E79004D0D053", nullptr},
    {1032, "Tunnel", "ED8A19BD-37E7-49e4-B6FA-D25095C41D44", nullptr},
    {1033, "Enlarge", "22F62993-FF48-4182-B70E-29A6CDBD05AA", nullptr},
    {1034, "Narrow", "07992914-52E9-4e8f-A022-01BE34F9C4F0", nullptr},
    {1035, "Whirl", "44650ECB-CC5A-4de9-8840-825573599B94", nullptr},
    {1036, "Raindrop", "9F471615-FA96-4296-9E58-E452E4BB6271", nullptr},
    {1037, "Frames", "0F0C071F-ADEF-4035-9F09-FEF186FADDF3", nullptr},
    {1041, "TiltShift", "20F6C8C9-FF17-469d-B102-EDA9EC540C6B", nullptr},
    {1038, "SketchB", "04E1E803-CB09-49cf-91C9-071B1BF67315", nullptr},
    {1039, "ColorSketchB", "374A5455-21B3-46a0-85AB-46791911E835", nullptr},
    {1040, "ColorSketch", "2D0FCDC7-956B-469f-8E05-7B36CC2933FF", nullptr},
    {1042, "Explosion", "4B2A0059-EA66-4b03-BAD2-E8F8452FE446", nullptr},
    {83, "Shadow", "D4A1FDF7-FD14-490e-8D29-177AEC4DED39", nullptr},
    {84, "Wash", "647304F8-B2DC-4200-B8B2-E8FF95020A44", nullptr},
    {85, "Comic", "BAC37FE1-0A77-4dca-9C45-2FDFE66F3D46", nullptr},
    {2049, "MergeColor", "1BA83E50-044A-4164-9140-1FA43407BC5E", nullptr},
    {2050, "MergeImage", "C11121FC-7AA9-4870-8158-39978E0ACD8E", "MergeImage.png"},
    {2052, "AncientCanvas", "1C3593CE-611E-4718-A571-AC16D0675F57", "AncientCanvas.png"},
    {2053, "Filter1", "A099367D-DB59-46da-A69B-0B4B70F3CDFE", "Filter1.png"},
    {2054, "OldPaper", "DF31D6E0-CC7D-4988-A412-D3DE68D0F203", "OldPaper.png"},
    {2055, "Vignette1", "E86FE066-E985-41cb-82A8-3AC568E468BC", "Vignette1.png"},
    {2056, "Vignette2", "E846392F-FDC8-425e-99E8-CE6AD71FC373", "Vignette2.png"},
    {2057, "Vignette3", "29646456-8842-48aa-AF9D-5FF6E6C92F79", "Vignette3.png"},
    {2058, "Vignette4", "28EAE3F0-0B8F-489a-B986-1D823C32D561", "Vignette4.png"},
    {2059, "Vignette5", "59DB863F-7A01-4ba1-8F4C-2FE7146D787D", "Vignette5.png"},
    {2060, "Vignette6", "FA3C2A99-8879-4bfb-8BFC-17F23AEA117B", "Vignette6.png"},
    {2061, "WaterDrop3", "CCC467B3-EA7F-4c8a-9949-D9281C8809DD", "WaterDrop3.png"},
    {2063, "OldTV", "C10ECCE1-538A-4754-9E3B-561D2A147709", "OldTV.png"},
    {2065, "StencilPoster", "104E99A6-F91B-46ae-B90B-A61394982ADC", "StencilPosterRed.png"},
    {2072, "ColorExplosion", "1D6A44B8-D73D-4dd5-8B0A-44259E20ABE7", "HardLight.png"},
    {2073, "BlueExplosion", "4E3B761D-7A15-411a-A2E7-B0832D755F6D", "color_explosion.png"},
    {2081, "OldFilm", "7DEB610D-957B-41b1-A29B-0B13181BDB8C", "Overlay.png"},
    {2097, "Shine1", "DD0449E6-7A2F-4e0a-A4EA-49A5FC8C48C1", "LinearDodge.png"},
    {2098, "ShineB", "35B558CD-37D6-43aa-8AA2-1E3090524931", "pf_shine2.png"},
    {2107, "MergeLight", "2CCDF572-B641-4793-A060-329008690461", "MergeLight.png"},
    {2191, "LinearLight", "99D88CB4-9229-4166-B283-197217758E0E", "LinearLight.png"},
    {2193, "SunSet", "6DE84CB8-C186-4419-8E88-6EE3B2967660", "ColorTuneCircle00.png"},
    {2194, "Vivid", "9E2DC6CF-BDC2-4368-99DD-DBB8A42A8298", "ColorTuneCircle00.png"},
    {2195, "Garden", "6C614395-EEA7-4d86-B3B5-2C475429B4B5", "ColorTuneCircle01.png"},
    {2196, "DanGui", "81D46CE2-7D13-4a85-9EE1-DFEE0C44FE3D", "ColorTuneCircle01.png"},
    {2197, "September", "637B6036-9E00-4f91-ACEA-AA1ABF1E82C5", "ColorTuneCircle01.png"},
    {2198, "Lumbra_Lomo", "2C052C3B-F0BD-4d5c-A8C0-5C86389DD7CB", "dark.png"},
    {2199, "Charcoal", "F24A2C3E-214F-4f9f-ADD9-C8221CC5B637", "sketch_black.png"},
    {2200, "ColorFense", "84966D50-730C-4f9b-B10F-B4C94112B77E", "sketch_black.png"},
    {2201, "FocusColor", "DA82B39B-F380-46c6-9445-3E096905D4E3", "pc_focusColor.png"},
    {2202, "Radio Explike FX", "2FFCED76-6277-41a5-B1AD-4BB27C8D44D3", "radial3.png"},
    {2203, "RQ_OLD_PHOTO", "43E461FF-BEB3-4ef1-974A-93812CB8D210", "oldtime.png"},
    {2204, "Canvas", "B23034C1-24C4-4504-9776-6805CFBD7F02", "sketch.png"},
    {2205, "Classic", "49D37319-8F37-4593-BBAF-9FF0A6307C01", "sketch.png"},
    {2099, "Raindrop", "C8300A8C-A146-4ef5-BEA6-6EE337300959", "pf_raindrop.png"},
    {2077, "MergeStar", "A501137B-73A8-4183-97A2-E26E2E3C64AE", "pf_bubble4.png"},
    {2188, "LinearBurn", "0F67BDD5-F850-4c8f-88D1-60B581451CC7", "LinearBurn.png"},
    {2186, "BurntPaper", "FD25B45B-3871-4290-B3B9-1704BB08B2DE", "burntpaper.png"},
    {2177, "MergeLinear", "662971AF-5A39-4d10-A0C3-26E447069242", "MergeLinear.png"},
    {2169, "SoftLight", "0A5DB296-72C5-4081-BA1F-32144DC4F172", "SoftLight.png"},
    {2150, "Screen", "20D18E32-E3C0-4063-8F0F-8E7C2DF00F7F", "Screen.png"},
    {2110, "Dark", "F257B557-180B-400d-81EF-DF8B63B6262F", "Dark.png"},
    {2136, "VignetteWhite", "77036E5E-515D-4bc8-841D-8804E7EC5705", "VignetteWhite.png"},
};
static_assert(std::size(AmEffectCatalog) == 155);

constexpr int kFirstLook = 44;
constexpr int kLastOldLook = 56;
constexpr int kLaterLooks = 65;

const char* familyOf(i32 id)
{
    if (am::kBlends.contains(id))
        return "am-texture";
    if (am::kLocals.contains(id))
        return "am-local";
    return (id >= kFirstLook && id <= kLastOldLook) || id >= kLaterLooks ? "am-look" : "am-filter";
}

ParamInfo integer(const char* name, const char* help, i32 value, double high, const char* unit = "percent")
{
    ParamInfo info{name, ParamType::integer, help, unit};
    info.high = high;
    info.value[0] = value;
    return info;
}

// `whole` is what stands for 100 percent.
ParamInfo share(const char* name, const char* help, float value, double whole)
{
    ParamInfo info{name, ParamType::real, help};
    info.high = whole;
    info.value[0] = value;
    return info;
}

// Nodes make pixels of the parameter, and the effect takes those for a percentage: what a host stores is the
// percentage divided by the height. Tools are told the values for a picture of 1080 rows.
ParamInfo bandBound(const char* name, const char* help, i32 percent)
{
    constexpr double kRows = 1080;
    ParamInfo info = share(name, help, float(percent / kRows), 100 / kRows);
    info.unit = "percent of the height, divided by the height in pixels; here for 1080";
    return info;
}

std::vector<ParamInfo> parametersOf(const am::Fact& fact)
{
    const AmEffectParams b = am::defaultsOf(fact.id);
    std::vector<ParamInfo> all;
    if (fact.reads & am::kReadsPosition) {
        all.push_back(integer("PositionX", "centre, from the left", b.posX, 100));
        all.push_back(integer("PositionY", "centre, from the bottom", b.posY, 100));
    }
    if (fact.reads & am::kReadsPick) {
        all.push_back(share(
            "DecolorPosX", "point to pick, hundredths of a percent of the width", b.pickX * 100, 10000));
        all.push_back(share("DecolorPosY",
            "point to pick, hundredths of a percent of the height, from the bottom", b.pickY * 100, 10000));
    }
    if (fact.reads & am::kReadsDirection) {
        all.push_back(integer("Direction", "where the picture's additions move", b.direction, 3, ""));
        all.back().choices = fact.directions;
    }
    if (fact.reads & am::kReadsBand) {
        all.push_back(bandBound("TopPos", "first row of the sharp band, from the bottom", b.top));
        all.push_back(bandBound("BottomPos", "end of the sharp band, from the bottom", b.bottom));
    }
    if (fact.reads & am::kReadsPercent)
        all.push_back(integer("Percent", fact.percentHelp, b.percent, 100));
    if (fact.reads & am::kReadsColour) {
        all.push_back(integer("Red", "colour, red", b.red, 255, ""));
        all.push_back(integer("Gleen", "colour, green", b.green, 255, ""));
        all.push_back(integer("Blue", "colour, blue", b.blue, 255, ""));
    }
    if (fact.reads & am::kReadsRadius)
        all.push_back(integer("Radius", fact.radiusHelp, b.radius, 100));
    return all;
}

using ParametersById = std::map<i32, std::vector<ParamInfo>>;

ParametersById describeAll()
{
    ParametersById all;
    for (const AmCatalogRow& row : AmEffectCatalog)
        all.emplace(row.id, parametersOf(*am::findFact(row.id)));
    return all;
}

EffectInfo infoOf(const AmCatalogRow& row, std::string name)
{
    const am::Fact& fact = *am::findFact(row.id);
    return {
        .guid = row.guid,
        .name = std::move(name),
        .title = fact.title,
        .family = familyOf(row.id),
        .summary = fact.summary,
        .random = (fact.traits & am::kRandom) != 0,
        .shared = (fact.traits & am::kShared) != 0,
        .history = {fact.traits & am::kAnimated ? History::kFromStart : 0},
        .alpha = fact.traits & am::kLosesAlpha ? Alpha::loose
            : fact.traits & am::kChangesAlpha  ? Alpha::computed
                                               : Alpha::kept,
    };
}

} // namespace

std::span<const AmCatalogRow> amCatalog() { return AmEffectCatalog; }

const AmCatalogRow* findAmRow(std::string_view guid)
{
    const auto found = std::ranges::find(
        AmEffectCatalog, guid, [](const AmCatalogRow& row) { return std::string_view(row.guid); });
    return found == std::end(AmEffectCatalog) ? nullptr : found;
}

std::span<const ParamInfo> amParameters(i32 id)
{
    static const ParametersById all = describeAll();
    const auto found = all.find(id);
    return found == all.end() ? std::span<const ParamInfo>{} : std::span<const ParamInfo>(found->second);
}

std::string amCommandName(std::string_view name)
{
    const auto between = [&](std::size_t i, char first, char last) {
        return i < name.size() && name[i] >= first && name[i] <= last;
    };
    const auto upper = [&](std::size_t i) { return between(i, 'A', 'Z'); };
    const auto lower = [&](std::size_t i) { return between(i, 'a', 'z'); };
    if (name.starts_with("Am") && upper(2))
        name.remove_prefix(2);
    std::string typed = "am-";
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (!upper(i) && !lower(i) && !between(i, '0', '9')) {
            typed += '-';
            continue;
        }
        // A word starts where upper case follows lower case, and at the last capital of several.
        const bool starts = upper(i) && i > 0 && (lower(i - 1) || (upper(i - 1) && lower(i + 1)));
        if (starts && typed.back() != '-')
            typed += '-';
        typed += upper(i) ? char(name[i] - 'A' + 'a') : name[i];
    }
    return typed;
}

std::vector<EffectInfo> amEffectInfos()
{
    std::vector<EffectInfo> infos;
    std::map<std::string, int> seen;
    for (const AmCatalogRow& row : AmEffectCatalog) {
        std::string name = amCommandName(row.name);
        const int count = ++seen[name];
        if (count > 1)
            name += "-" + std::to_string(count);
        if (am::findEffect(row.id))
            infos.push_back(infoOf(row, std::move(name)));
    }
    return infos;
}

} // namespace KEXSDK
