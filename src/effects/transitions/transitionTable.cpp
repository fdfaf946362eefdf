// The 63 transitions, each declared once: name, function, GUID, and what tools say about it.
#include "effects/transitions/transitionTable.h"

#include "core/Log.h"
#include "effects/transitions/families.h"
#include "effects/transitions/lifted.h"

#include <array>
#include <map>
#include <string>

namespace transitions {

using namespace transitions;

namespace {

enum Trait {
    kPlain,
    kRandom,
    kRandomAndShared, ///< random in a way that all nodes of the process share
    kKeepsBytes       ///< some bytes are not written in some frames and stay from the frame before
};

struct Row {
    TransitionTableEntry entry;
    const char* commandName;
    const char* title;
    const char* summary;
    Trait trait = kPlain;
};

// Projects store the GUIDs: the first one is a digit short and stays so.
constexpr Row kRows[] = {
    {{"Row_whisk", lifted<rowWhisk>, "4C481959-DA74-459b-B538-D0590BFB2CE"}, "row-whisk", "Rows Whisk",
        "Bands of ten rows enter from the left and from the right in turn."},
    {{"Col_whisk", lifted<colWhisk>, "25045AAA-9ACA-445c-B24C-21052C9B8D27"}, "col-whisk", "Columns Whisk",
        "Bands of ten columns enter from the top and from the bottom in turn."},
    {{"Cross_whisk", lifted<crossWhisk>, "50C89935-C9C8-44a1-A4F4-99B8A29A517A"}, "cross-whisk",
        "Cross Whisk", "Bands of rows and of columns enter from all four sides."},
    {{"Row_split", lifted<rowSplit>, "98CD2167-3F82-4eaf-AE93-D8EFFDCECC1E"}, "row-split", "Rows Split",
        "A band opens from the middle row upward and downward."},
    {{"Col_split", lifted<colSplit>, "48497ECE-F824-4480-A04D-984977F3AA29"}, "col-split", "Columns Split",
        "A band opens from the middle column to both sides."},
    {{"Row_merge", lifted<rowMerge>, "47EEB6BF-8E99-488f-BCD8-ABD73A495CB4"}, "row-merge", "Rows Merge",
        "The new picture closes in from the top and the bottom."},
    {{"Col_merge", lifted<colMerge>, "84611DFC-9C1F-4f2a-B514-B434D849B956"}, "col-merge", "Columns Merge",
        "The new picture closes in from both sides."},
    {{"Cross_split", lifted<crossSplit>, "75A09E8D-21D1-4c4e-AEA9-EB9CEC11A644"}, "cross-split",
        "Cross Split", "A growing cross opens from the centre."},
    {{"Cross_merge", lifted<crossMerge>, "0D227E56-DB1E-4fe4-B07B-A9C062FF6F73"}, "cross-merge",
        "Cross Merge", "The corners grow until the cross between them is gone."},
    {{"Rect_zoom_in", lifted<rectZoomIn>, "CACF5228-B4B6-44e2-91C6-4CA8367EECBA"}, "rect-zoom-in",
        "Rectangle Zoom In", "A centred rectangle of the old picture shrinks."},
    {{"Rect_zoom_out", lifted<rectZoomOut>, "F7BD83DF-999C-4d09-8F4C-85DAB842E720"}, "rect-zoom-out",
        "Rectangle Zoom Out", "A centred rectangle of the new picture grows."},
    {{"Skew_right_split", lifted<skewRightSplit>, "2D4099D2-9B28-437f-8FEB-2A7E25C0B549"}, "skew-right-split",
        "Skew Right Split", "A soft band opens from the diagonal that starts at the top right."},
    {{"Skew_left_split", lifted<skewLeftSplit>, "5003D879-7930-44fa-A333-F21F62564709"}, "skew-left-split",
        "Skew Left Split", "A soft band opens from the diagonal that starts at the top left."},
    {{"Skew_left_merge", lifted<skewLeftMerge>, "DECFFC57-1EE6-41ef-A453-75EBC7E9172B"}, "skew-left-merge",
        "Skew Left Merge", "The new picture closes in softly on the diagonal that starts at the top left."},
    {{"Skew_right_merge", lifted<skewRightMerge>, "40164154-9921-419c-A4D2-3751573655F0"}, "skew-right-merge",
        "Skew Right Merge", "The new picture closes in softly on the diagonal that starts at the top right."},
    {{"Round_zoom_out", lifted<roundZoomOut>, "97D5B991-903E-43bc-9B03-A808F74692D3"}, "round-zoom-out",
        "Round Zoom Out", "A soft circle of the new picture grows."},
    {{"Round_zoom_in", lifted<roundZoomIn>, "ABBD7AED-1384-4fd2-862B-E955E5F9C3AE"}, "round-zoom-in",
        "Round Zoom In", "A soft circle of the old picture shrinks."},
    {{"Diamond_zoom_in", lifted<diamondZoomIn>, "9303303E-2AFC-4301-B2C7-F4C5F681A580"}, "diamond-zoom-in",
        "Diamond Zoom In", "A diamond of the old picture shrinks."},
    {{"Diamond_zoom_out", lifted<diamondZoomOut>, "06E3515B-3EA3-4071-AD49-B9EDCD468B93"}, "diamond-zoom-out",
        "Diamond Zoom Out", "A diamond of the new picture grows."},
    {{"Roll_clockwise", lifted<rollClockwise>, "1EE81222-189E-4159-A917-D15EE518D2FF"}, "roll-clockwise",
        "Roll Clockwise", "A soft line turns about the bottom left corner, from upright to flat."},
    {{"Roll_anti_clockwise", lifted<rollAntiClockwise>, "8115A683-09ED-4d19-8D8F-A6010B6EEEBA"},
        "roll-anti-clockwise", "Roll Anticlockwise",
        "A soft line turns about the bottom left corner, from flat to upright."},
    {{"Vertical_shutter", lifted<verticalShutter>, "B4292352-81D3-4e7d-ACC9-F040150E41A3"},
        "vertical-shutter", "Vertical Shutter", "Upright slats open to the right."},
    {{"Horizontal_shutter", lifted<horizontalShutter>, "DCD3D68E-FFCD-4240-B1EE-348E9E393CC9"},
        "horizontal-shutter", "Horizontal Shutter", "Level slats open downward."},
    {{"Cross_shutter_1", lifted<crossShutter1>, "AFED7E12-9A02-49d4-8233-7EB50FB749B9"}, "cross-shutter-1",
        "Cross Shutter 1", "Upright and level slats open together."},
    {{"Cross_shutter_2", lifted<crossShutter2>, "0922661A-A249-40f7-999B-A60DBD447E2F"}, "cross-shutter-2",
        "Cross Shutter 2", "Squares grow from the corner of every cell."},
    {{"Grid_zoom_in", lifted<gridZoomIn>, "426F529C-3486-4973-BA25-F61A4955A0A1"}, "grid-zoom-in",
        "Grid Zoom In", "Squares of the new picture grow in every cell."},
    {{"Grid_zoom_out", lifted<gridZoomOut>, "0E7A04C3-95DA-4633-9AF3-E39BCC95B86F"}, "grid-zoom-out",
        "Grid Zoom Out", "Squares of the old picture shrink in every cell."},
    {{"Deposit_up", lifted<depositUp>, "A8D9BD07-A79B-4f00-952E-9FDE7072CF64"}, "deposit-up", "Deposit Up",
        "Layers rise from the bottom and pile up at the top."},
    {{"sweep_clockwise", lifted<sweepClockwise>, "74876B99-7AD0-49b3-91D4-D3136E9A850A"}, "sweep-clockwise",
        "Sweep Clockwise", "A soft hand sweeps clockwise once round the centre."},
    {{"sweep_anti_clockwise", lifted<sweepAntiClockwise>, "32B08589-D9BB-486a-A9D7-E78D29099EEE"},
        "sweep-anti-clockwise", "Sweep Anticlockwise",
        "A soft hand sweeps anticlockwise once round the centre."},
    {{"Row_cos_whisk", lifted<rowCosWhisk>, "C8C1ED9D-959D-453f-8EFD-93D5BF7F5B23"}, "row-cos-whisk",
        "Rows Cosine Whisk", "Rows are uncovered from both sides along a cosine front."},
    {{"Row_cos_slide", lifted<rowCosSlide>, "07222DAB-BE45-487e-9A30-02AB42C2D70D"}, "row-cos-slide",
        "Rows Cosine Slide", "Rows slide in from both sides along a cosine front."},
    {{"Row_split_2", lifted<rowSplit2>, "715C64BE-0B6A-4780-95B0-FD580A21F521"}, "row-split-2",
        "Rows Split 2", "A soft band opens over the rows and closes on the new picture.", kKeepsBytes},
    {{"Col_split_2", lifted<colSplit2>, "DC4F36FC-68B4-40b9-A08C-5B60EFA8546E"}, "col-split-2",
        "Columns Split 2", "A soft band opens over the columns and closes on the new picture."},
    {{"Topple", lifted<topple>, "AEF2EDAC-9644-4874-9481-C7DD64FAF04F"}, "topple", "Topple",
        "The old picture is squeezed downward while the new one comes in from the top."},
    {{"Blind_1", lifted<blind1>, "14FA525B-900A-402f-88B3-F28EEAFC31D8"}, "blind-1", "Blind 1",
        "A shaded fold with dark slats passes from left to right."},
    {{"Twrl", lifted<twrl>, "664A7041-693D-47c1-81CB-DFAA211D485B"}, "twirl", "Twirl",
        "The old picture spins away, then the new one spins up, on black.", kKeepsBytes},
    {{"Zoom", lifted<zoom>, "40B96872-E6B9-4f73-9B78-4D88339AE56B"}, "zoom", "Zoom",
        "The old picture zooms in while the new one grows from the centre.", kKeepsBytes},
    {{"Pinwheel", lifted<pinwheel>, "668D3D30-43B8-41ef-A222-86E7912A497E"}, "pinwheel", "Pinwheel",
        "Four blades open about the centre."},
    {{"Linear Wipe Down", lifted<linearWipeDown>, "C456899A-C306-4f88-ACD9-5B158A5B1F48"}, "linear-wipe-down",
        "Linear Wipe Down", "A soft level edge moves down."},
    {{"Linear Wipe Right", lifted<linearWipeRight>, "6675F015-A329-4ee9-9A89-E5427799D0BD"},
        "linear-wipe-right", "Linear Wipe Right", "A soft upright edge moves to the right."},
    {{"Dissolve 2", lifted<dissolve2>, "BDC34DEB-D6DA-4aaa-90A9-787BBD841775"}, "dissolve-2", "Dissolve 2",
        "Pixels change one by one in a random order.", kRandomAndShared},
    {{"Erase", lifted<erase>, "667A322D-7351-44fd-AACC-17B0F766DA5F"}, "erase", "Erase",
        "An upright edge with a short ramp moves to the right."},
    {{"Erase_slide", lifted<eraseSlide>, "4CA4EF88-5997-41a6-AAE6-0C2226D5A96E"}, "erase-slide",
        "Erase Slide", "A hard upright edge moves to the right."},
    {{"Bar", lifted<bar>, "B41CF7F3-E39A-40e9-AE28-F21292EDDD03"}, "bar", "Bar",
        "A staircase of bars moves to the right."},
    {{"Drop", lifted<drop>, "136D4AD9-F8E6-44ef-8485-730F0F269FFD"}, "drop", "Drop",
        "The old picture falls out in bands, the lowest first."},
    {{"Blind", lifted<blind>, "95F00574-529C-485e-87F4-970AD90419E9"}, "blind", "Blind",
        "Level slats of the old picture grow thin.", kKeepsBytes},
    {{"Turn", lifted<turn>, "1B033EDA-6869-4957-AF60-323B09FB49FC"}, "turn", "Turn",
        "The picture turns over about its level centre line, in perspective."},
    {{"Roll", lifted<roll>, "026C7976-00C0-4a05-A27A-E8D3372C06E7"}, "roll", "Roll",
        "A shaded curl rolls from left to right."},
    {{"Roll_right_top", lifted<rollRightTop>, "1B3AF7D9-695E-4af0-9DC6-A8CFEE464DF8"}, "roll-right-top",
        "Roll to Top Right", "A shaded curl rolls from the bottom left corner to the top right."},
    {{"Wind", lifted<wind>, "7E154FAA-91D3-4002-AEDD-9EBA2201711E"}, "wind", "Wind",
        "Ragged rows are blown in from the left.", kRandom},
    {{"MoveRect_1", lifted<moveRect1>, "F47CBE2C-CE60-40b9-B962-CABF3175E488"}, "move-rectangles-1",
        "Move Rectangles 1", "Tiles of the old picture fly apart from the centre and shrink."},
    {{"MoveRect_2", lifted<moveRect2>, "48DE56F4-D272-45b0-99AA-8F359C7FA3A7"}, "move-rectangles-2",
        "Move Rectangles 2", "Tiles of the old picture drift apart, slowly at first, and shrink."},
    {{"Linear Wipe", lifted<linearWipe>, "FD4A4891-4E1C-4e05-B290-8195CC55E8C5"}, "linear-wipe",
        "Linear Wipe", "A soft edge at 45 degrees moves from the top left to the bottom right."},
    {{"Push", lifted<push>, "925C36FB-9EE1-4fca-899F-549D8328F2DC"}, "push", "Push",
        "The new picture pushes the old one out to the right."},
    {{"Flash", lifted<flash>, "BF94B014-EFD7-4303-8243-76C0A29B20E7"}, "flash", "Flash",
        "Both pictures brighten into a flash, under which they change."},
    {{"Dissolve", lifted<dissolve>, "2981D185-D52E-44f4-ABD5-3CE83890E32E"}, "dissolve", "Dissolve",
        "The new picture fades in over the old one."},
    {{"Fade", lifted<fade>, "0CAA397E-6EB2-4e51-9DF7-B7DDB338EB22"}, "fade", "Fade",
        "The old picture fades to dark, the new one up from it."},
    {{"Wave", lifted<wave>, "9C91C7DA-1ABE-4304-BD50-CE7780E77EEA"}, "wave", "Wave",
        "A ring of waves runs out from the centre and uncovers the new picture."},
    {{"H_random_line", lifted<hRandomLine>, "B6A86CA4-2864-415c-8620-6E4341812E35"}, "h-random-line",
        "Random Horizontal Lines", "Single rows change at random.", kRandom},
    {{"V_random_line", lifted<vRandomLine>, "470EC1DC-A0F0-4dd4-BB2D-D312C39F54F2"}, "v-random-line",
        "Random Vertical Lines", "Single columns change at random.", kRandom},
    {{"Drop_bounce", lifted<dropBounce>, "8EF84F2E-C203-4f98-84D1-959EF228456D"}, "drop-bounce",
        "Drop Bounce", "The new picture drops in and bounces twice."},
    {{"Pixelate", lifted<pixelate>, "0FBDABAD-9BC5-42e7-9596-EC20AC763806"}, "pixelate", "Pixelate",
        "The picture breaks into blocks, cross-fades and sharpens again.", kKeepsBytes},
};

constexpr auto entriesOfRows()
{
    std::array<TransitionTableEntry, std::size(kRows)> entries{};
    for (std::size_t i = 0; i < entries.size(); ++i)
        entries[i] = kRows[i].entry;
    return entries;
}
constexpr auto kEntries = entriesOfRows();

std::map<std::string, TransitionFunc*, std::less<>> transitionByGuid;

} // namespace

constinit const std::span<const TransitionTableEntry> transitionTable{kEntries};

void transitionMgrInit()
{
    logging::info("transitionMgrInit", "Load transtions.");
    for (const TransitionTableEntry& entry : transitionTable)
        transitionByGuid[entry.guid] = entry.algorithm;
}

std::unique_ptr<KEXSDK::CTransitionEffect> createTransition(u32 width, u32 height, const char* guid)
{
    const auto found = transitionByGuid.find(std::string_view(guid));
    if (found == transitionByGuid.end())
        return nullptr;
    return std::make_unique<KEXSDK::CTransitionEffect>(width, height, found->second);
}

std::vector<KEXSDK::EffectInfo> transitionInfos()
{
    std::vector<KEXSDK::EffectInfo> infos;
    for (const Row& row : kRows) {
        KEXSDK::EffectInfo info;
        info.guid = row.entry.guid;
        info.name = row.commandName;
        info.title = row.title;
        info.family = "transition";
        info.summary = row.summary;
        info.inputs = 2;
        info.shared = row.trait == kRandomAndShared;
        info.random = info.shared || row.trait == kRandom;
        info.keepsOutput = row.trait == kKeepsBytes;
        info.history.frames = info.keepsOutput ? KEXSDK::History::kFromStart : 0;
        // Some write colours only, some lose alpha in rounding or count it as a colour that fades.
        info.alpha = KEXSDK::Alpha::loose;
        infos.push_back(info);
    }
    return infos;
}

} // namespace transitions
