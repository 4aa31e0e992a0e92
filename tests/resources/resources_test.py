#!/usr/bin/env python3
"""Checks the installed resources against what the code reads from them.

usage: resources_test.py BUILT-RESOURCES SOURCE-RESOURCES [unittest arguments]
"""
import json
import re
import subprocess
import sys
import tempfile
import unittest
import wave
from array import array
from pathlib import Path
from xml.etree import ElementTree

BUILT, SOURCE = Path(sys.argv[1]), Path(sys.argv[2])

THEMES = ["default", "Tern-theme", "Ibis-theme", "Vorla-theme"]
TOOLS = ["RoundRect", "Oval", "Arrow", "Curve", "MosaicPen", "Text", "Tag"]
FUNCTIONS = ["Undo", "Save", "Cancel", "OK"]
STATES = ["normal", "hover", "pressed", "selected"]
CURSORS = ["move_cursor", "sightingTelescopeCursor"] + [
    f"resize_cursor_{angle}" for angle in (0, 45, 90, 135)] + [
    f"rotate_cursor_{angle}" for angle in range(0, 360, 45)]
GRAPH_FRAMES = [f"VLEditGraphType{tool}_frame" for tool in TOOLS]
FUNCTION_FRAMES = [f"VLToolbarFunctionButtonType{name}_frame" for name in FUNCTIONS]
COLOR_FRAMES = [f"VLPopoverLineColorButton{index}Frame" for index in range(1, 7)]
WIDTH_FRAMES = [f"VLPopoverLineWidthButton{index}Frame" for index in range(1, 4)]
WIDTH_VALUES = [f"VLPopoverLineWidthButton{index}Value" for index in range(1, 4)]

# Every key that the code looks up, by the form of its value.
KEYS = {
    "color": """
        VLCaptureSizeinfoView_BackgroundColor VLCaptureSizeinfoView_BorderColor
        VLCaptureSizeinfoView_FontColor VLCaptureView_BackgroundColor
        VLCaptureView_ControlPoint_FillColor VLCaptureView_ControlPoint_StrokeColor
        VLCaptureView_SelectRect_BorderColor VLCaptureView_SelectRect_FillColor
        VLMagnifierBackgroundColor VLMagnifierCrossLineColor VLMagnifierInfoBackgroundColor
        VLMagnifier_FontColor VLPopoverFontSizeBorderColor VLPopoverFontSize_FontColor
        VLPopoverLineColorBorderColor VLPopoverMenu_BackgroundColor VLPopoverMenu_BorderColor
        VLPopoverMenu_HoverColor VLPopover_BackgroundColor VLToolbarView_BackgroundColor""".split(),
    "font": ["VLCaptureSizeinfoView_Font"],
    "size": """
        VLCaptureSizeinfoView_Size VLCaptureView_ControlPoint_Size VLPopoverFontSizeViewSize
        VLPopoverLineColorViewSize VLPopoverLineWidthViewSize VLPopoverViewArrowSize
        VLPopoverViewSize_FontColor VLPopoverViewSize_Logo VLPopoverViewSize_Width
        VLPopoverViewSize_WidthColor VLToolbarPanelSize""".split(),
    "margin": """
        VLPopoverFontSizeViewMargin VLPopoverLineColorViewMargin
        VLPopoverLineWidthViewMargin""".split(),
    "weight": ["VLCaptureView_ControlPoint_StrokeWidth",
               "VLCaptureView_SelectRect_BorderWidth"] + WIDTH_VALUES,
    "enable": ["VLCaptureSizeInfoView_EnableGaussEffect"],
    "frame": GRAPH_FRAMES + FUNCTION_FRAMES + COLOR_FRAMES + WIDTH_FRAMES,
    "image": CURSORS
    + [f"VLEditGraphType{tool}_{state}" for tool in TOOLS for state in STATES + ["diabled"]]
    + [f"VLToolbarFunctionButtonType{name}_{state}"
       for name in FUNCTIONS for state in STATES + ["disabled"]]
    + [f"VLToolbarLineWidth{width}px_{state}"
       for width in (3, 6, 9) for state in ("normal", "selected")]
    + """VLPopoverLogo VLPopoverPullDownArrow VLSwitchPullDown VLSwitchPullUp
         VLToolbarSeperateLine logoIntroduce_normal logoIntroduce_hover""".split(),
}

# Looked up only after the string table has turned them into the key of a language's own picture.
TRANSLATED = ["vlswitchFirstFrame", "vlswitch"]

# Text and what lies behind it.
LEGIBLE = [
    ("VLCaptureSizeinfoView_FontColor", "VLCaptureSizeinfoView_BackgroundColor"),
    ("VLMagnifier_FontColor", "VLMagnifierInfoBackgroundColor"),
    ("VLPopoverFontSize_FontColor", "VLPopover_BackgroundColor"),
    ("VLPopoverFontSize_FontColor", "VLPopoverMenu_BackgroundColor"),
    ("VLPopoverFontSize_FontColor", "VLPopoverMenu_HoverColor"),
]


def once(pairs):
    """An object of a JSON file; a key that stands twice is a slip of the editor's."""
    keys = [key for key, _ in pairs]
    repeated = {key for key in keys if keys.count(key) > 1}
    assert not repeated, f"keys given twice: {repeated}"
    return dict(pairs)


def read_json(path):
    return json.loads(path.read_text(encoding="utf-8"), object_pairs_hook=once)


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


def members(*names):
    return lambda value: (isinstance(value, dict) and set(value) == set(names)
                          and all(is_number(value[name]) and value[name] >= 0 for name in names))


def is_color(value):
    if not isinstance(value, dict) or not 0 <= value.get("A", 1) <= 1:
        return False
    if "Hex" in value:
        return bool(re.fullmatch(r"#([0-9a-f]{3}|[0-9a-f]{6})", value["Hex"])) and set(value) <= {
            "Hex", "A"}
    return members("R", "G", "B")({key: value.get(key) for key in "RGB"}) and all(
        value[key] <= 1 for key in "RGB")


# A font's size stands under two spellings, and a file without either of them gives no usable font.
SHAPES = {
    "color": is_color,
    "font": lambda value: isinstance(value.get("Name"), str) and value.get("Size")
    == value.get("size") and 9 <= value["size"] <= 24,
    "size": lambda value: members("W", "H")(value) and value["W"] > 0 and value["H"] > 0,
    "margin": members("L", "B"),
    "weight": lambda value: is_number(value) and value > 0,
    "enable": lambda value: isinstance(value, bool),
    "frame": members("X", "Y", "W", "H"),
    "image": lambda value: isinstance(value, str),
}


def channels(color):
    if "Hex" not in color:
        return [color[key] for key in "RGB"], color.get("A", 1)
    digits = color["Hex"][1:]
    digits = "".join(2 * digit for digit in digits) if len(digits) == 3 else digits
    return [int(digits[at:at + 2], 16) / 255 for at in (0, 2, 4)], color.get("A", 1)


def luminance(rgb):
    linear = [c / 12.92 if c <= 0.04045 else ((c + 0.055) / 1.055) ** 2.4 for c in rgb]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(front, back, behind):
    """The ratio that web accessibility rules use, for a background laid over `behind`."""
    rgb, alpha = channels(back)
    base = [alpha * c + (1 - alpha) * behind for c in rgb]
    rgb, alpha = channels(front)
    ink = [alpha * c + (1 - alpha) * b for c, b in zip(rgb, base)]
    low, high = sorted([luminance(ink), luminance(base)])
    return (high + 0.05) / (low + 0.05)


def overlap(a, b):
    return (a["X"] < b["X"] + b["W"] and b["X"] < a["X"] + a["W"]
            and a["Y"] < b["Y"] + b["H"] and b["Y"] < a["Y"] + a["H"])


def for_each_theme(test):
    def run(self):
        for name in THEMES:
            with self.subTest(theme=name):
                test(self, name, read_json(BUILT / "ThemeResources" / name / "themeConfigue.json"))
    return run


class ThemeTest(unittest.TestCase):
    @for_each_theme
    def test_every_key_is_there_in_its_form_and_no_other(self, _, theme):
        wanted = {key for keys in KEYS.values() for key in keys}
        spare = {key for key in theme if key.split("_zh-")[0] not in TRANSLATED}
        self.assertEqual(wanted, spare)
        for form, keys in KEYS.items():
            for key in keys:
                self.assertTrue(SHAPES[form](theme[key]), f"{key}: {theme[key]}")

    @for_each_theme
    def test_text_is_legible_over_any_picture(self, _, theme):
        for front, back in LEGIBLE:
            for behind in (0, 1):
                ratio = contrast(theme[front], theme[back], behind)
                self.assertGreaterEqual(ratio, 4.5, f"{front} on {back} over {behind}")

    @for_each_theme
    def test_the_border_stands_out_from_a_dark_screen(self, _, theme):
        # Lines are not text: 3 is enough. From a light screen the dim layer itself sets it off.
        back = theme["VLCaptureView_BackgroundColor"]
        for front in ("VLCaptureView_SelectRect_BorderColor", "VLCaptureView_ControlPoint_FillColor"):
            self.assertGreaterEqual(contrast(theme[front], back, 0), 3.0, front)

    @for_each_theme
    def test_a_selection_shows_its_pixels_as_they_are(self, _, theme):
        self.assertEqual(0, channels(theme["VLCaptureView_SelectRect_FillColor"])[1])
        # A stroke is centred on the edge between two pixels, so only even widths are crisp.
        self.assertEqual(0, theme["VLCaptureView_SelectRect_BorderWidth"] % 2)

    def fits(self, theme, keys, size, what):
        for index, key in enumerate(keys):
            frame = theme[key]
            self.assertLessEqual(frame["X"] + frame["W"], size["W"], f"{key} leaves {what}")
            self.assertLessEqual(frame["Y"] + frame["H"], size["H"], f"{key} leaves {what}")
            for other in keys[index + 1:]:
                self.assertFalse(overlap(frame, theme[other]), f"{key} lies on {other}")

    @for_each_theme
    def test_buttons_fit_their_panels(self, name, theme):
        # The toolbar of the Vorla theme has no tools, and only the Tern theme has swatches.
        shown = FUNCTION_FRAMES if name == "Vorla-theme" else GRAPH_FRAMES + FUNCTION_FRAMES
        self.fits(theme, shown, theme["VLToolbarPanelSize"], "the toolbar")
        self.fits(theme, WIDTH_FRAMES, theme["VLPopoverLineWidthViewSize"], "the picker")
        if name == "Tern-theme":
            self.fits(theme, COLOR_FRAMES, theme["VLPopoverLineColorViewSize"], "the picker")
        else:
            # The drop-down boxes of the other themes end at 87, whatever the theme says.
            for key in ("VLPopoverLineColorViewSize", "VLPopoverLineWidthViewSize"):
                self.assertGreaterEqual(theme[key]["W"], 87)

    @for_each_theme
    def test_pickers_fit_their_popovers(self, _, theme):
        for first, panel in (("LineWidth", "WidthColor"), ("FontSize", "FontColor")):
            right = (theme[f"VLPopover{first}ViewMargin"]["L"]
                     + theme[f"VLPopover{first}ViewSize"]["W"]
                     + theme["VLPopoverLineColorViewMargin"]["L"]
                     + theme["VLPopoverLineColorViewSize"]["W"])
            size = theme[f"VLPopoverViewSize_{panel}"]
            self.assertLessEqual(right, size["W"])
            self.assertLessEqual(theme["VLPopoverLineColorViewSize"]["H"]
                                 + theme["VLPopoverViewArrowSize"]["H"], size["H"])

    @for_each_theme
    def test_each_width_is_a_whole_number_of_its_own(self, _, theme):
        widths = [int(theme[key]) for key in WIDTH_VALUES]
        self.assertEqual(sorted(set(widths)), [theme[key] for key in WIDTH_VALUES])

    @for_each_theme
    def test_every_picture_is_a_drawing_of_the_right_size(self, name, theme):
        fixed = {key: (32, 32) for key in CURSORS}
        fixed.update({"VLSwitchPullUp": (52, 57), "VLSwitchPullDown": (52, 57),
                      "VLPopoverPullDownArrow": (15, 8), "vlswitchFirstFrame": (436, 72)})
        for key in (key for key, value in theme.items() if isinstance(value, str)):
            path = BUILT / "ThemeResources" / name / theme[key]
            self.assertTrue(path.is_file(), f"{key} names {theme[key]}")
            text = path.read_text(encoding="utf-8")
            self.assertNotIn("@", text, f"{theme[key]} has a name that was not filled in")
            root = ElementTree.fromstring(text)
            self.assertEqual("{http://www.w3.org/2000/svg}svg", root.tag)
            size = float(root.get("width")), float(root.get("height"))
            self.assertEqual(f"0 0 {size[0]:g} {size[1]:g}", root.get("viewBox"))
            stem = key.split("_zh-")[0]
            if stem == "vlswitch":
                self.assertEqual((0, 72), (size[0] % 436, size[1]))
            elif stem in fixed:
                self.assertEqual(fixed[stem], size, key)


class StringTableTest(unittest.TestCase):
    def test_languages_have_the_same_keys_and_point_at_pictures_that_exist(self):
        tables = {path.parent.name: read_json(path) for path in BUILT.glob("*.lproj/*.json")}
        self.assertEqual({"en.lproj", "zh-Hans.lproj"}, set(tables))
        self.assertEqual(set(tables["en.lproj"]), set(tables["zh-Hans.lproj"]))
        # The layout of a label compares this word.
        self.assertEqual("English", tables["en.lproj"]["Language"])
        for language, table in tables.items():
            for key, text in table.items():
                self.assertTrue(isinstance(text, str) and text, f"{language}: {key}")
            for theme in THEMES:
                keys = read_json(BUILT / "ThemeResources" / theme / "themeConfigue.json")
                for key in TRANSLATED:
                    self.assertIn(table[key], keys, f"{language}, {theme}")


class InformationDictionaryTest(unittest.TestCase):
    def test_the_plain_build_has_a_version_and_sends_nothing(self):
        info = read_json(BUILT / "Info.json")
        parts = info["CFBundleShortVersionString"].split(".")
        self.assertTrue(1 <= len(parts) <= 4 and all(int(part) < 65536 for part in parts))
        self.assertTrue(int(info["CFBundleVersion"]) > 0)
        self.assertTrue(all(isinstance(name, str) for name in info["CFBundleSupportedPlatforms"]))
        self.assertNotIn("SupplyID", info)
        self.assertEqual(("", ""), (info["StatisticsURL"], info["CrashSyncURL"]))


class SoundTest(unittest.TestCase):
    def test_the_shutter_is_short_and_does_not_click_at_its_ends(self):
        with wave.open(str(BUILT / "camera.wav")) as file:
            self.assertEqual((1, 2, 44100),
                             (file.getnchannels(), file.getsampwidth(), file.getframerate()))
            samples = array("h", file.readframes(file.getnframes()))
        if sys.byteorder == "big":
            samples.byteswap()
        self.assertTrue(0.10 <= len(samples) / 44100 <= 0.25)
        loudest = max(map(abs, samples))
        self.assertTrue(8000 < loudest < 32000, loudest)
        self.assertTrue(max(abs(samples[0]), abs(samples[-1])) < 0.01 * loudest)

    def test_the_file_is_what_its_script_makes(self):
        with tempfile.NamedTemporaryFile(suffix=".wav") as made:
            subprocess.run([sys.executable, SOURCE / "tools/make_shutter.py", made.name], check=True)
            self.assertEqual(Path(made.name).read_bytes(), (SOURCE / "camera.wav").read_bytes())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
