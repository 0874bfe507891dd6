"""The check of the reference pages has to catch every claim that a control does not keep, and stale pages."""

import pathlib
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
from reference import control_data, library, reference  # noqa: E402

OK, REFUSED = library.SUCCESS, library.INVALID_ARGUMENT


def answer(result, text=""):
    return {"result": result, "text": text}


def complaints(entry, *answers):
    """Of one claim about the property Size, to which a control gives these answers."""
    trials = list(control_data.trials_of("Control", "Size", {"accepts": "numbers", **entry}))
    return trials[-1].expect(list(answers), {"buttonFace": "0x00C0C0C0"})


def accessor(name, kind):
    return {"name": name, "id": 1, "kind": kind, "slot": 12, "help": "", "parameters": [{"name": "p", "type": "long*"}]}


class Claims(unittest.TestCase):
    def test_defaults_are_compared(self):
        for claimed, read in [(5, "5"), (True, "-1"), ("#102030", "0x00302010"), ("button face", "0x00C0C0C0"),
                              ("Arial,9,400", "Arial,9.75,400"), (5.5, "5.5")]:
            with self.subTest(claimed=claimed):
                self.assertIsNone(complaints({"default": claimed}, answer(OK, read)))
        for claimed, read in [(5, "6"), (True, "1"), ("#102030", "0x00102030"), ("Arial,9,400", "Arial,10,400"),
                              ("Arial,9,400", "Arial,9,700")]:
            with self.subTest(claimed=claimed):
                self.assertIn("is documented", complaints({"default": claimed}, answer(OK, read)))
        self.assertIn("is documented", complaints({"default": 5}, answer("0x80004005", "5")))

    def test_values_that_are_kept_or_changed_are_put_and_read(self):
        self.assertIsNone(complaints({"default": 0, "keeps": [7]}, answer(OK), answer(OK, "7")))
        self.assertIn("Size=7", complaints({"default": 0, "keeps": [7]}, answer(OK), answer(OK, "6")))
        self.assertIn("succeeds", complaints({"default": 0, "keeps": [7]}, answer(REFUSED, "no"), answer(OK, "7")))
        self.assertIsNone(complaints({"default": 0, "turns": [[-3, 0]]}, answer(OK), answer(OK, "0")))
        self.assertIn("Size=-3", complaints({"default": 0, "turns": [[-3, 0]]}, answer(OK), answer(OK, "-3")))

    def test_refusals_have_a_code_and_a_text_and_change_nothing(self):
        entry = {"default": 0, "refuses": ["Size=-1"]}
        good = (answer(OK, "4"), answer(REFUSED, "Size: the value must be 0 or more."), answer(OK, "4"))
        self.assertIsNone(complaints(entry, *good))
        self.assertIn("a refusal", complaints(entry, good[0], answer(OK), good[2]))
        self.assertIn("no text", complaints(entry, good[0], answer(REFUSED), good[2]))
        self.assertIn("changes 4 to -1", complaints(entry, *good[:2], answer(OK, "-1")))

    def test_names_groups_and_keys_have_to_fit_the_type_library(self):
        data = {"page": "view", "properties": {"Size": {"accepts": "all"}, "Lost": {"accepts": "all", "colour": 1},
                                               "Fixed": {"accepts": "all"}},
                "group": [{"names": ["Size", "Lost", "Size"]}]}
        properties = {name: library.Property({kind: accessor(name, kind) for kind in kinds})
                      for name, kinds in {"Size": ("get", "put"), "New": ("get", "put"), "Fixed": ("get",)}.items()}
        found = "\n".join(control_data.structure_problems(data, properties))
        for text in ["Lost is in the data file only", "New is in the type library only", "Size has to be in one group",
                     "Fixed has to be in one group", "Fixed: puts are documented", "unknown key colour"]:
            self.assertIn(text, found)


    def test_members_of_the_companion_have_to_be_told_of(self):
        companion = [{"name": "Maker", "kind": "class", "parts": [{"name": "IMaker", "source": False, "default": True}]},
                     {"name": "IMaker", "kind": "dual",
                      "members": [accessor("Make", "method"), accessor("MakeAll", "method")]}]
        types = library.Types({"libraries": [[], companion]})
        self.assertEqual(list(reference.untold(types, "`Make(Number)` makes one, `MakeAll` all.")), [])
        self.assertEqual(list(reference.untold(types, "MakeAll and `MakeAll`")),
                         ["docs/companion.md says nothing of Maker.Make"])


class Pages(unittest.TestCase):
    def test_stale_pages_and_pictures_too_few_or_too_many_are_told(self):
        with tempfile.TemporaryDirectory() as folder:
            pages, images = pathlib.Path(folder), pathlib.Path(folder) / "images"
            images.mkdir()
            (pages / "same.md").write_text("text")
            (pages / "old.md").write_text("text")
            (images / "shown.png").touch()
            (images / "left.png").touch()
            found = list(reference.stale({"same.md": "text", "old.md": "new", "new.md": "text"},
                                         {"shown.png": "", "lost.png": ""}, pages, images))
        self.assertEqual([line.split(":")[0] for line in found],
                         ["docs/reference/old.md is stale", "docs/reference/new.md is stale",
                          "docs/images/reference/left.png is shown nowhere", "docs/images/reference/lost.png is missing"])

    def test_pictures_of_a_property_that_show_the_same_are_told(self):
        with tempfile.TemporaryDirectory() as folder:
            images = pathlib.Path(folder)
            for name, content in {"a-1": "x", "a-2": "y", "b-1": "x", "b-2": "x", "b-3": "y"}.items():
                (images / f"{name}.png").write_text(content)
            found = list(reference.alike([["a-1.png", "a-2.png"], ["b-1.png", "b-2.png", "b-3.png"], []], images))
        self.assertEqual(found, ["docs/images/reference: of b-1.png, b-2.png, b-3.png some are the same"])


if __name__ == "__main__":
    unittest.main()
