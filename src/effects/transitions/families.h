// The drawing functions of the table, by the file that holds them. Each is a function of the pictures and the
// progress alone, except where its file says otherwise.
#pragma once

#include "effects/transitions/Canvas.h"
#include "effects/transitions/Progress.h"

namespace transitions {

// bands.cpp
void rowWhisk(const Canvas& c, const Progress& p);
void colWhisk(const Canvas& c, const Progress& p);
void crossWhisk(const Canvas& c, const Progress& p);
void rowSplit(const Canvas& c, const Progress& p);
void colSplit(const Canvas& c, const Progress& p);
void rowMerge(const Canvas& c, const Progress& p);
void colMerge(const Canvas& c, const Progress& p);
void crossSplit(const Canvas& c, const Progress& p);
void crossMerge(const Canvas& c, const Progress& p);
void rectZoomIn(const Canvas& c, const Progress& p);
void rectZoomOut(const Canvas& c, const Progress& p);

// shutters.cpp
void verticalShutter(const Canvas& c, const Progress& p);
void horizontalShutter(const Canvas& c, const Progress& p);
void crossShutter1(const Canvas& c, const Progress& p);
void crossShutter2(const Canvas& c, const Progress& p);
void gridZoomIn(const Canvas& c, const Progress& p);
void gridZoomOut(const Canvas& c, const Progress& p);

// wipes.cpp
void linearWipeDown(const Canvas& c, const Progress& p);
void linearWipeRight(const Canvas& c, const Progress& p);
void linearWipe(const Canvas& c, const Progress& p);
void erase(const Canvas& c, const Progress& p);
void rowSplit2(const Canvas& c, const Progress& p);
void colSplit2(const Canvas& c, const Progress& p);

// skew.cpp
void skewLeftSplit(const Canvas& c, const Progress& p);
void skewRightSplit(const Canvas& c, const Progress& p);
void skewLeftMerge(const Canvas& c, const Progress& p);
void skewRightMerge(const Canvas& c, const Progress& p);

// rounds.cpp
void roundZoomOut(const Canvas& c, const Progress& p);
void roundZoomIn(const Canvas& c, const Progress& p);
void diamondZoomOut(const Canvas& c, const Progress& p);
void diamondZoomIn(const Canvas& c, const Progress& p);

// angles.cpp
void sweepClockwise(const Canvas& c, const Progress& p);
void sweepAntiClockwise(const Canvas& c, const Progress& p);
void rollClockwise(const Canvas& c, const Progress& p);
void rollAntiClockwise(const Canvas& c, const Progress& p);
void pinwheel(const Canvas& c, const Progress& p);

// slides.cpp
void eraseSlide(const Canvas& c, const Progress& p);
void bar(const Canvas& c, const Progress& p);
void push(const Canvas& c, const Progress& p);
void rowCosWhisk(const Canvas& c, const Progress& p);
void rowCosSlide(const Canvas& c, const Progress& p);
void topple(const Canvas& c, const Progress& p);
void drop(const Canvas& c, const Progress& p);
void dropBounce(const Canvas& c, const Progress& p);
void depositUp(const Canvas& c, const Progress& p);
void blind(const Canvas& c, const Progress& p);

// folds.cpp
void blind1(const Canvas& c, const Progress& p);
void roll(const Canvas& c, const Progress& p);
void rollRightTop(const Canvas& c, const Progress& p);

// tiles.cpp
void moveRect1(const Canvas& c, const Progress& p);
void moveRect2(const Canvas& c, const Progress& p);

// warps.cpp
void pixelate(const Canvas& c, const Progress& p);
void zoom(const Canvas& c, const Progress& p);
void twrl(const Canvas& c, const Progress& p);
void turn(const Canvas& c, const Progress& p);

// wave.cpp
void wave(const Canvas& c, const Progress& p);

// levels.cpp
void dissolve(const Canvas& c, const Progress& p);
void fade(const Canvas& c, const Progress& p);
void flash(const Canvas& c, const Progress& p);

// scatter.cpp
void dissolve2(const Canvas& c, const Progress& p);
void hRandomLine(const Canvas& c, const Progress& p);
void vRandomLine(const Canvas& c, const Progress& p);
void wind(const Canvas& c, const Progress& p);

} // namespace transitions
