#!/usr/bin/python3
"""Kinds of pictures: what other programs wrote is read as they read it, and what the tool writes they read.

    formatTest.py TOOL

Pixels are compared in numbers, with those of ImageMagick, Pillow, libjxl's and libavif's programs and Little CMS's."""

import atexit
import os
import random
import re
import shutil
import struct
import subprocess
import sys
import tempfile

from PIL import Image, ImageCms

tool = os.path.realpath(sys.argv[1])
work = tempfile.mkdtemp()
atexit.register(shutil.rmtree, work)
os.chdir(work)
failures = 0
KEEP = ["apply", "hue-shift", "-p", "kex_effect_enable=0"]
CMYK = "/usr/share/color/icc/ghostscript/default_cmyk.icc"
ADOBE_RGB = "/usr/share/color/icc/compatibleWithAdobeRGB1998.icc"
SRGB = "/usr/share/color/icc/sRGB.icc"
GREY = "/usr/share/color/icc/Gray.icc"


def check(good, what):
    global failures
    if not good:
        print("FAILED:", what, file=sys.stderr)
        failures += 1


def run(*command):
    done = subprocess.run([str(word) for word in command], capture_output=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: {done.stderr.decode()}")
    return done.stdout


def fails(code, text, *words):
    done = subprocess.run([tool, *words], capture_output=True, timeout=60)
    said = done.stderr.decode()
    check(done.returncode == code and text in said and said.count("\n") == 1, f"{words}: {done.returncode} {said}")


def keep(source, target, *options):
    """Through the tool, with an effect that is switched off."""
    done = subprocess.run([tool, *KEEP, *options, source, target], capture_output=True)
    check(done.returncode == 0, f"{source} to {target}: {done.stderr.decode()}")
    return done.stderr.decode()


def pixels(source, *options):
    """What the tool sees in a file."""
    keep(source, "seen.bmp", *options)
    data = open("seen.bmp", "rb").read()
    start, width, height = struct.unpack_from("<I", data, 10)[0], *struct.unpack_from("<II", data, 18)
    picture = Image.frombuffer("RGBA", (width, height), data[start:], "raw", "BGRA", 0, -1)
    return picture.copy()


def difference(a, b):
    """The largest difference of two pictures; none for pictures of different sizes."""
    if a.size != b.size:
        return None
    return max(abs(p - q) for p, q in zip(a.tobytes(), b.tobytes()))


def mean(a, b):
    return sum(abs(p - q) for p, q in zip(a.tobytes(), b.tobytes())) / len(a.tobytes()) if a.size == b.size else 999


def near(what, a, b, bound):
    found = difference(a, b)
    check(found is not None and found <= bound, f"{what}: {a.size} and {b.size} differ by {found}, not by {bound}")


def raw(file, mode="RGBA", *options):
    """What ImageMagick sees in a file."""
    with_size = run("convert", file, *options, "-format", "%w %h", "info:").split()
    size = tuple(map(int, with_size[:2]))
    return Image.frombytes(mode, size, run("convert", file, *options, "-depth", 8, mode.lower() + ":-"))


def throughImageMagick(file):
    """The picture in sRGB, by ImageMagick."""
    return raw(file, "RGB", "-intent", "Relative", "-black-point-compensation", "-profile", SRGB)


def photograph(width, height, alpha):
    """Smooth colours with some noise, so that every channel and place differs from the others."""
    dice = random.Random(7)
    data = bytearray()
    for y in range(height):
        for x in range(width):
            data += bytes([x * 255 // width, y * 255 // height, (x * 5 + y * 3 + dice.randrange(9)) % 256])
            data.append((x * 7 + y * 11) % 256 if alpha else 255)
    return Image.frombytes("RGBA", (width, height), bytes(data))


PLAIN = photograph(48, 36, False)
CLEAR = photograph(48, 36, True)
PLAIN.save("plain.png")
CLEAR.save("clear.png")
run("exiftool", "-q", "-overwrite_original", "-Make=Maker", "-Model=Model", "-Orientation=1", "-n", "-ISO=200",
    "-GPSLatitude=12.5", "-GPSLatitudeRef=N", "plain.png")
LOSSLESS = {"webp": ["--quality", "100"], "avif": ["--quality", "100"], "jxl": ["--quality", "100"], "tif": [], "png": []}


def readBack(file):
    """What a library's own program sees in a file."""
    if file.endswith(".jxl"):
        run("djxl", file, "read.png")
    elif file.endswith(".avif"):
        run("avifdec", file, "read.png")
    else:
        return Image.open(file).convert("RGBA")
    return Image.open("read.png").convert("RGBA")


def testLossless():
    for kind, options in LOSSLESS.items():
        for name, picture in (("plain", PLAIN), ("clear", CLEAR)):
            for effort in ([], ["--compression", "fast"], ["--compression", "small"]):
                file = f"{name}.out.{kind}"
                keep(f"{name}.png", file, *options, *effort)
                near(f"{file} {effort} read by others", readBack(file), picture, 0)
                near(f"{file} {effort} read again", pixels(file), picture, 0)
            first = open(file, "rb").read()
            keep(f"{name}.png", file, *options, *effort)
            check(open(file, "rb").read() == first, f"{file} has other bytes each time")
    for kind in ("webp", "avif", "jxl", "tif"):
        size = Image.open("plain.png").size
        keep("plain.png", f"small.{kind}", "--size", "1x1")
        check(pixels(f"small.{kind}").size == (1, 1), f"one pixel in {kind}")
        check(size == pixels(f"plain.out.{kind}").size, kind)


def testQuality():
    for kind, best in (("jpg", 3), ("webp", 12), ("avif", 6), ("jxl", 12)):
        sizes = []
        for quality in (10, 50, 90, 99):
            keep("plain.png", f"q.{kind}", "--quality", str(quality))
            sizes.append(os.path.getsize(f"q.{kind}"))
        check(sizes == sorted(set(sizes)), f"sizes of {kind} by quality: {sizes}")
        found = mean(pixels(f"q.{kind}"), PLAIN)
        check(found < best, f"quality 99 of {kind}: {found}")
        keep("clear.png", f"q.{kind}")
        if kind != "jpg":
            near(f"alpha of {kind}", pixels(f"q.{kind}").getchannel("A"), CLEAR.getchannel("A"), 16 if kind == "jxl" else 0)
    keep("plain.png", "default.jpg")
    keep("plain.png", "same.jpg", "--quality", "92")
    check(open("default.jpg", "rb").read() == open("same.jpg", "rb").read(), "the quality that JPEG has without --quality")
    fails(2, "--quality is for", *KEEP, "--quality", "80", "plain.png", "out.png")
    fails(2, "--compression is for", *KEEP, "--compression", "fast", "plain.png", "out.jpg")


def testOrientation():
    turns = {2: Image.FLIP_LEFT_RIGHT, 3: Image.ROTATE_180, 4: Image.FLIP_TOP_BOTTOM, 5: Image.TRANSPOSE,
             6: Image.ROTATE_90, 7: Image.TRANSVERSE, 8: Image.ROTATE_270}  # from upright to stored
    avif = {1: [], 2: ["--imir", "1"], 3: ["--irot", "2"], 4: ["--imir", "0"], 5: ["--irot", "1", "--imir", "0"],
            6: ["--irot", "3"], 7: ["--irot", "3", "--imir", "0"], 8: ["--irot", "1"]}
    upright = PLAIN.convert("RGB")
    for number in range(1, 9):
        stored = upright.transpose(turns[number]) if number in turns else upright
        exif = Image.Exif()
        exif[0x112] = number
        stored.save("turned.tif", tiffinfo={274: number})
        stored.save("turned.webp", lossless=True, exif=exif)
        stored.save("turned.png", exif=exif)
        stored.save("bare.png")
        # (A pixel's name, and where it belongs, follow ISO 23008-12: turned first, then mirrored.)
        run("avifenc", "-l", *avif[number], "bare.png", "turned.avif")
        run("cjxl", "-d", "0", "turned.png", "turned.jxl")
        for kind in ("tif", "webp", "png", "avif", "jxl"):
            near(f"orientation {number} in {kind}", pixels(f"turned.{kind}").convert("RGB"), upright, 0)


def testMetadata():
    run("convert", "plain.png", "-profile", ADOBE_RGB, "-quality", 95, "photo.jpg")
    run("exiftool", "-q", "-overwrite_original", "-Make=Maker", "-Orientation#=6", "-ISO=200", "-GPSLatitude=12.5",
        "-GPSLatitudeRef=N", "-GPSLongitude=7", "-GPSLongitudeRef=E", "photo.jpg")
    profile = open(ADOBE_RGB, "rb").read()
    tags = ["-s3", "-n", "-Make", "-Orientation", "-ISO", "-GPSLatitude", "-GPSLongitude"]
    expected = b"Maker\n1\n200\n12.5\n7\n"
    for kind in ("webp", "avif", "jxl", "tif", "png", "jpg"):
        keep("photo.jpg", f"carried.{kind}")
        check(run("exiftool", *tags, f"carried.{kind}") == expected, f"EXIF data in {kind}: {run('exiftool', *tags, f'carried.{kind}')}")
        if kind != "jxl":
            check(run("exiftool", "-b", "-ICC_Profile", f"carried.{kind}") == profile, f"profile in {kind}")
        keep(f"carried.{kind}", "again.jpg")
        check(run("exiftool", *tags, "again.jpg") == expected, f"EXIF data out of {kind}")
        # A lossy JPEG XL file holds colours of its own, and the profile of what its reader makes of them.
        if kind != "jxl":
            check(run("exiftool", "-b", "-ICC_Profile", "again.jpg") == profile, f"profile out of {kind}")
        check(pixels(f"carried.{kind}").size == (36, 48), f"{kind} is upright")
        keep("photo.jpg", f"bare.{kind}", "--strip")
        check(run("exiftool", *tags, f"bare.{kind}") in (b"", b"1\n"), f"--strip for {kind}")
        if kind != "jxl":
            near(f"--strip and the pixels of {kind}", pixels(f"bare.{kind}"), pixels(f"carried.{kind}"), 0)
    wanted = throughLcms(Image.open("photo.jpg").convert("RGB").transpose(Image.ROTATE_270), ADOBE_RGB)
    found = mean(pixels("carried.jxl").convert("RGB"), wanted)
    check(found < 12, f"colours of JPEG XL with a profile: {found}")
    keep("photo.jpg", "exact.jxl", "--quality", "100")
    keep("exact.jxl", "again.jpg")
    check(run("exiftool", "-b", "-ICC_Profile", "again.jpg") == profile, "profile of JPEG XL without loss")
    # The other byte order.
    run("exiftool", "-q", "-all=", "-o", "big.jpg", "photo.jpg")
    run("exiftool", "-q", "-overwrite_original", "-ExifByteOrder=MM", "-Make=Maker", "-Orientation#=6", "-ISO=200",
        "-GPSLatitude=12.5", "-GPSLatitudeRef=N", "-GPSLongitude=7", "-GPSLongitudeRef=E", "big.jpg")
    keep("big.jpg", "carried.tif")
    check(run("exiftool", *tags, "carried.tif") == expected, "EXIF data in the other order")
    check(run("exiftool", "-s3", "-Warning", "carried.tif") == b"", "a TIFF file with EXIF data")


def rounded(file, mode):
    """The nearest values of 8 bits to those of 16 that ImageMagick sees."""
    data = run("convert", file, "-depth", 16, "-endian", "LSB", mode + ":-")
    return bytes((value * 255 * 2 + 65535) // (65535 * 2) for value in struct.unpack(f"<{len(data) // 2}H", data))


def test16Bits():
    run("convert", "-size", "64x64", "gradient:red-blue", "(", "-size", "64x64", "radial-gradient:white-black", ")",
        "-alpha", "off", "-compose", "CopyOpacity", "-composite", "-depth", 16, "PNG64:deep.png")
    run("convert", "deep.png", "-alpha", "off", "-depth", 16, "deep.ppm")
    run("convert", "deep.png", "-depth", 16, "-compress", "zip", "deep.tif")
    run("convert", "deep.png", "-depth", 16, "-endian", "MSB", "-compress", "none", "-interlace", "plane", "planes.tif")
    run("convert", "deep.png", "-alpha", "off", "-colorspace", "gray", "-depth", 16, "grey.tif")
    run("cjxl", "-d", 0, "deep.png", "deep.jxl")
    run("avifenc", "-d", 12, "-l", "deep.png", "deep.avif")
    for file in ("deep.png", "deep.tif", "planes.tif", "deep.jxl"):
        reference = Image.frombytes("RGBA", (64, 64), rounded("deep.png" if file.endswith("jxl") else file, "rgba"))
        near(f"16 bits of {file}", pixels(file), reference, 0)
    near("16 bits of a pixmap", pixels("deep.ppm").convert("RGB"), Image.frombytes("RGB", (64, 64), rounded("deep.ppm", "rgb")), 0)
    near("16 bits of grey", pixels("grey.tif").convert("RGB"), Image.frombytes("RGB", (64, 64), rounded("grey.tif", "rgb")), 0)
    near("12 bits of AVIF", pixels("deep.avif"), Image.frombytes("RGBA", (64, 64), rounded("deep.png", "rgba")), 1)


def testKindsOfTiff():
    made = {"lzw": ["-compress", "lzw"], "packbits": ["-compress", "rle"], "tiles": ["-define", "tiff:tile-geometry=16x16"],
            "planes": ["-interlace", "plane"], "grey": ["-colorspace", "gray"], "greyAlpha": ["-colorspace", "gray"],
            "palette": ["-alpha", "off", "-colors", "13", "-type", "palette"], "fax": ["-alpha", "off", "-monochrome", "-compress", "group4"],
            "white": ["-alpha", "off", "-colorspace", "gray", "-define", "quantum:polarity=min-is-white"],
            "four": ["-alpha", "off", "-colorspace", "gray", "-depth", "4"], "msb": ["-endian", "msb"]}
    for name, options in made.items():
        source = "plain.png" if name == "grey" else "clear.png"
        run("convert", source, *options, f"{name}.tif")
        # (ImageMagick cuts the 16 bits of palettes off, where they are rounded here.)
        near(f"TIFF, {name}", pixels(f"{name}.tif"), raw(f"{name}.tif"), 1 if name == "palette" else 0)
    run("convert", "clear.png", "-define", "tiff:alpha=associated", "associated.tif")
    seen = pixels("associated.tif")
    near("associated alpha", seen.getchannel("A"), CLEAR.getchannel("A"), 0)
    strong = Image.frombytes("L", seen.size, bytes(255 if a > 127 else 0 for a in CLEAR.getchannel("A").tobytes()))
    black = Image.new("RGB", seen.size)
    near("colours under associated alpha", Image.composite(seen.convert("RGB"), black, strong),
         Image.composite(CLEAR.convert("RGB"), black, strong), 2)
    run("convert", "plain.png", "-compress", "jpeg", "-quality", 95, "jpeg.tif")
    near("JPEG in TIFF", pixels("jpeg.tif"), raw("jpeg.tif"), 8)
    run("convert", "plain.png", "-alpha", "off", "-colorspace", "Lab", "-depth", 8, "lab.tif")
    found = mean(pixels("lab.tif").convert("RGB"), raw("lab.tif", "RGB", "-colorspace", "sRGB"))
    check(found < 6, f"Lab in TIFF: {found}")


def throughLcms(picture, profile, mode="RGB"):
    """The picture in sRGB, by Little CMS itself."""
    flags = ImageCms.FLAGS["BLACKPOINTCOMPENSATION"] | ImageCms.FLAGS["HIGHRESPRECALC"]
    return ImageCms.profileToProfile(picture, profile, ImageCms.createProfile("sRGB"),
        renderingIntent=ImageCms.Intent.RELATIVE_COLORIMETRIC, outputMode=mode, flags=flags)


def testInks():
    run("convert", "plain.png", "-alpha", "off", "-profile", SRGB, "-profile", CMYK, "-compress", "lzw", "inks.tif")
    run("convert", "inks.tif", "-depth", 16, "inks16.tif")
    run("convert", "inks.tif", "-quality", 97, "-sampling-factor", "1x1", "inks.jpg")
    Image.open("inks.tif").save("pillow.jpg", quality=97, icc_profile=open(CMYK, "rb").read())
    wanted = throughLcms(Image.open("inks.tif"), CMYK)
    run("tificc", "-t1", "-b", "-c2", "-o", SRGB, "inks.tif", "lcms.tif")
    near("inks as tificc turns them", pixels("inks.tif").convert("RGB"), Image.open("lcms.tif").convert("RGB"), 2)
    # (ImageMagick's way through Little CMS is coarser.)
    check(mean(pixels("inks.tif").convert("RGB"), throughImageMagick("inks.tif")) < 2, "inks as ImageMagick turns them")
    near("inks of TIFF", pixels("inks.tif").convert("RGB"), wanted, 0)
    near("inks of 16 bits", pixels("inks16.tif").convert("RGB"), wanted, 1)
    for file in ("inks.jpg", "pillow.jpg"):
        # Pillow hands out what inverted inks are stored as.
        stored = Image.open(file)
        near(f"inks of {file}", pixels(file).convert("RGB"), throughLcms(stored, CMYK), 3)
        check(mean(pixels(file).convert("RGB"), throughImageMagick(file)) < 2, f"inks of {file} by ImageMagick")
    keep("inks.tif", "printed.png")
    check(b"iCCP" not in open("printed.png", "rb").read(), "the profile of inks is carried")
    # Without a profile, what inks leave of white light.
    run("convert", "inks.tif", "-strip", "plain.tif")
    values = iter(Image.open("plain.tif").tobytes())
    left = bytes(v for c, m, y, k in zip(values, values, values, values) for v in [(255 - i) * (255 - k) // 255 for i in (c, m, y)])
    near("inks without a profile", pixels("plain.tif").convert("RGB"), Image.frombytes("RGB", PLAIN.size, left), 0)


def testSrgb():
    profile = open(ADOBE_RGB, "rb").read()
    PLAIN.save("wide.png", icc_profile=profile)
    wide = Image.open("wide.png").convert("RGB")
    wanted = throughLcms(wide, ADOBE_RGB)
    near("the profile changes nothing by itself", pixels("wide.png").convert("RGB"), wide, 0)
    check(difference(wide, wanted) > 20, "the profiles are alike")
    for kind in ("png", "webp", "avif", "jxl", "tif"):
        keep("wide.png", f"wide.out.{kind}", *LOSSLESS[kind])
        near(f"--srgb from {kind}", pixels(f"wide.out.{kind}", "--srgb").convert("RGB"), wanted, 0)
    near("--srgb as ImageMagick turns it", pixels("wide.png", "--srgb").convert("RGB"),
         throughImageMagick("wide.png"), 2)
    keep("wide.png", "srgb.png", "--srgb")
    check(b"iCCP" not in open("srgb.png", "rb").read(), "--srgb leaves the profile out")
    CLEAR.save("wide.png", icc_profile=profile)
    near("--srgb and alpha", pixels("wide.png", "--srgb").getchannel("A"), CLEAR.getchannel("A"), 0)
    PLAIN.convert("L").save("grey.jpg", quality=95, icc_profile=open(GREY, "rb").read())
    grey = Image.open("grey.jpg")
    near("--srgb from a grey profile", pixels("grey.jpg", "--srgb").convert("RGB"), throughLcms(grey.convert("L"), GREY), 1)
    # 16 bits are converted before they are rounded: a dark gradient in linear light keeps its steps.
    run("convert", "-size", "8x256", "gradient:#0a0a0a-#000000", "-depth", 16, "-colorspace", "RGB", "-set", "colorspace",
        "sRGB", "-profile", "linear.icc" if linearProfile("linear.icc") else "", "linear.tif")
    steps = len(set(pixels("linear.tif", "--srgb").getchannel("R").tobytes()))
    check(steps >= 10, f"{steps} steps of a dark gradient in linear light")
    # Colours that are told in numbers.
    run("avifenc", "-l", "--cicp", "12/13/0", "plain.png", "p3.avif")
    keep("p3.avif", "p3.jpg")
    check(b"ICC_PROFILE" in open("p3.jpg", "rb").read(), "AVIF's colours are lost")
    p3 = pixels("p3.avif", "--srgb").convert("RGB")
    check(20 < difference(p3, PLAIN.convert("RGB")), "AVIF's colours are not converted")
    keep("p3.jpg", "profile.icc.png")
    run("exiftool", "-b", "-ICC_Profile", "-w", "%f.p3.icc", "p3.jpg")
    near("AVIF's colours", p3, throughLcms(PLAIN.convert("RGB"), "p3.p3.icc"), 0)
    gamma("plain.png", "gamma.png", 100000)
    bright = pixels("gamma.png", "--srgb")
    check(abs(bright.getpixel((24, 0))[0] - 187) < 6, f"gAMA: {bright.getpixel((24, 0))}")
    gamma("plain.png", "gamma.png", 45455)
    near("gAMA of sRGB", pixels("gamma.png", "--srgb"), PLAIN, 0)


def linearProfile(file):
    """A profile of sRGB's lights in linear light, made from one that there is: its curves become straight lines."""
    data = bytearray(open(SRGB, "rb").read())
    for i in range(struct.unpack_from(">I", data, 128)[0]):
        name, offset, size = struct.unpack_from(">4sII", data, 132 + i * 12)
        if name in (b"rTRC", b"gTRC", b"bTRC"):
            data[offset:offset + 12] = b"curv" + bytes(8)
            struct.pack_into(">I", data, 132 + i * 12 + 8, 12)
    open(file, "wb").write(data)
    return True


def gamma(source, target, value):
    """A PNG file without other colour information, and with gAMA."""
    import zlib
    Image.open(source).convert("RGBA").save(target)
    data = open(target, "rb").read()
    chunk = b"gAMA" + struct.pack(">I", value)
    open(target, "wb").write(data[:33] + struct.pack(">I", 4) + chunk + struct.pack(">I", zlib.crc32(chunk)) + data[33:])


def testDamage():
    for kind, options in LOSSLESS.items():
        keep("plain.png", f"whole.{kind}", *options)
        whole = open(f"whole.{kind}", "rb").read()
        for part in (0.5, 0.9, 0.97):
            open(f"cut.{kind}", "wb").write(whole[:int(len(whole) * part)])
            fails(4, f"cut.{kind}", *KEEP, f"cut.{kind}", "out.bmp")
        open(f"head.{kind}", "wb").write(whole[:20])
        fails(4, "not a picture that can be decoded", *KEEP, f"head.{kind}", "out.bmp")
    check(not os.path.exists("out.bmp"), "a damaged file became a picture")
    def entry(tag, value):
        return struct.pack("<HHII", tag, 4, 1, value)
    for width, text in ((60000, "too large a picture"), (4000, "damaged or cut short")):
        fields = [entry(256, width), entry(257, width), entry(258, 8), entry(259, 1), entry(262, 1), entry(273, 8),
                  entry(277, 1), entry(278, width), entry(279, 100)]
        open("bomb.tif", "wb").write(b"II*\0" + struct.pack("<IH", 8, len(fields)) + b"".join(fields) + bytes(4))
        fails(4, text, *KEEP, "bomb.tif", "out.bmp")


def testAnimations():
    frames = [Image.new("RGBA", (20, 10), colour) for colour in ("red", "green", "blue")]
    frames[0].save("moving.webp", save_all=True, append_images=frames[1:], lossless=True, duration=100)
    frames[0].save("pages.tif", save_all=True, append_images=frames[1:])
    for file in ("moving.webp", "pages.tif"):
        check("the first one is taken" in keep(file, "first.bmp"), f"{file} says nothing of its further pictures")
        near(file, pixels(file), frames[0], 0)


def testFolders():
    os.mkdir("many")
    for kind in LOSSLESS:
        keep("plain.png", f"many/{kind}.{kind}", *LOSSLESS[kind])
    run(tool, *KEEP, "-j", 2, "many", "one")
    run(tool, *KEEP, "-j", 1, "many", "two")
    for name in sorted(os.listdir("many")):
        check(open(f"one/{name}", "rb").read() == open(f"two/{name}", "rb").read(), f"{name} depends on the processes")
    run(tool, *KEEP, "--format", "avif", "--quality", 60, "many", "three")
    check(sorted(os.listdir("three")) == ["avif.avif", "jxl.avif", "png.avif", "tif.avif", "webp.avif"], os.listdir("three"))


for name, test in list(globals().items()):
    if re.match("test[A-Z0-9]", name) and (len(sys.argv) < 3 or name in sys.argv[2:]):
        try:
            test()
        except Exception as error:
            check(False, f"{name}: {error!r}")
sys.exit(failures > 0)
