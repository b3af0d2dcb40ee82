"""Values of keys: their types, what is refused, and what a mapping does."""
import math

import pytest

import mox_xmlapi as mox
from mox_xmlapi import Entry, Presentation, Settings, Shape, Table, ValueType


HEAD = '<?xml version="1.0" encoding="UTF-8"?>\n<Settings xmlns:noNamespaceSchemaLocation="MXSettings.xsd">\n'


def section_with(*entries):
    section = Settings().make_section("S")
    for entry in entries:
        section.add(entry)
    return section


def test_values_have_the_type_of_their_entry(camera):
    values = Settings.open(camera)["Camera"]
    assert dict(values) == {
        "Model": "VC-1240M", "SerialNumber": "0417-22&B", "Exposure": 1800, "Gain": 1.25, "AutoExposure": False,
        "ToneCurve": bytes.fromhex("0010203248617C98B6D6F7FF"), "TestPattern": False}
    assert [type(value) for value in values.values()] == [str, str, int, float, bool, bytes, bool]


@pytest.mark.parametrize("value, type_name, text", [
    (0, "LONG", "0"), (-2**31, "LONG", "-2147483648"), (2**31, "ULONG", "2147483648"),
    (2**32 - 1, "ULONG", "4294967295"), (1.5, "DOUBLE", "1.5"), (True, "BOOL", "1"), (False, "BOOL", "0"),
    ("Förderband", "STRING", "Förderband"),
    ("", "STRING", ""), ("😀", "STRING", "😀")])
def test_a_new_key_returns_what_was_assigned(value, type_name, text):
    section = Settings().make_section("S")
    section["key"] = value
    assert section["key"] == value and type(section["key"]) is type(value)
    assert section.entry("key") == Entry("key", text, ValueType[type_name])


@pytest.mark.parametrize("value, text", [
    (2**32, "4294967296"), (-2**63, "-9223372036854775808"), (b"\x01\xfe", "01FE")])
def test_what_has_no_type_of_its_own_is_stored_as_a_string(value, text):
    section = Settings().make_section("S")
    section["key"] = value
    assert section["key"] == text
    assert section.read("key", type(value)) == value
    assert section.entry("key").type is ValueType.STRING


@pytest.mark.parametrize("type_name, shape, good, bad", [
    ("SHORT", 0, [-32768, 32767], [(32768, mox.OutOfRangeError), (1.0, mox.WrongTypeError),
                                   (True, mox.WrongTypeError)]),
    ("LONG", 0, [2**31 - 1], [(2**31, mox.OutOfRangeError), (2.5, mox.WrongTypeError), ("17", mox.WrongTypeError)]),
    ("USHORT", 0, [65535], [(-1, mox.OutOfRangeError), (b"1", mox.WrongTypeError)]),
    ("ULONG", 0, [2**32 - 1], [(-1, mox.OutOfRangeError), (2**32, mox.OutOfRangeError)]),
    ("DOUBLE", 0, [1.5, -1e300, 7, 2**53], [(2**53 + 1, mox.OutOfRangeError), (math.inf, mox.OutOfRangeError),
                                             ("1.5", mox.WrongTypeError), (True, mox.WrongTypeError)]),
    ("BOOL", 0, [True, False], [(1, mox.WrongTypeError), ("1", mox.WrongTypeError)]),
    ("BYTE", 0x2000, [b"\x00\xff"], [("00FF", mox.WrongTypeError), (0, mox.WrongTypeError)]),
    ("DOUBLE", 0x1000, ["0.5 1.5"], [(0.5, mox.WrongTypeError)])])
def test_an_assigned_value_suits_the_type_of_the_entry(type_name, shape, good, bad):
    section = section_with(Entry("key", "0", ValueType[type_name], Shape(shape)))
    for value in good:
        section["key"] = value
        assert section["key"] == value
        assert section.entry("key").type is ValueType[type_name]
    before = section.entry("key")
    for value, error in bad:
        with pytest.raises(error):
            section["key"] = value
        assert section.entry("key") == before


def test_a_refusal_names_the_key_the_type_and_the_value():
    section = section_with(Entry("key", "0", ValueType.LONG))
    with pytest.raises(mox.WrongTypeError) as caught:
        section["key"] = 2.5
    assert str(caught.value) == "S/key: the type is long: expected int, found 2.5"
    with pytest.raises(mox.OutOfRangeError) as caught:
        section["key"] = 2**40
    assert str(caught.value) == ("S/key: the type is long, but the value is not from -2147483648 to 2147483647: "
                                 "1099511627776")


def test_a_string_takes_any_value_as_text():
    section = section_with(Entry("key", "x"))
    for value, text in [(5, "5"), (1.5, "1.5"), (True, "1"), (b"\xff", "FF"), ("a", "a")]:
        section["key"] = value
        assert section["key"] == text


def test_write_keeps_the_type_whatever_the_value():
    section = section_with(Entry("key", "5", ValueType.LONG))
    section.write("key", "none")
    assert section.entry("key") == Entry("key", "none", ValueType.LONG)
    with pytest.raises(mox.WrongTypeError):
        section["key"]
    assert section.read("key", str) == "none"


@pytest.mark.parametrize("text", ["1_0", "٣", "0x10", "1 2", "", "1.0", "--1"])
def test_text_that_is_no_number_is_not_read_as_one(text):
    section = section_with(Entry("key", text, ValueType.LONG))
    with pytest.raises(mox.WrongTypeError):
        section["key"]
    with pytest.raises(mox.WrongTypeError):
        section.read("key", int)


@pytest.mark.parametrize("text", ["9223372036854775808", "-9223372036854775809", "9999999999999999999"])
def test_numbers_of_more_than_64_bits_are_not_read(text):
    section = section_with(Entry("key", text, ValueType.LONG))
    with pytest.raises(mox.OutOfRangeError):
        section["key"]


@pytest.mark.parametrize("text, type_name, value", [
    (" 17\n", "LONG", 17), ("+5", "SHORT", 5), ("-5", "SHORT", -5), ("true", "BOOL", True), (".5", "DOUBLE", 0.5),
    ("1e3", "DOUBLE", 1000.0), ("0.1", "DOUBLE", 0.1), ("123456789.123456789", "DOUBLE", 123456789.123456789),
    ("9223372036854775807", "LONG", 2**63 - 1)])
def test_values_that_people_have_written_are_read(text, type_name, value):
    document = Settings.parse((HEAD + '<Table name="S"><Var name="key" type="%s"><Value>%s</Value></Var>'
                               '</Table></Settings>' % (type_name.lower(), text)).encode())
    assert document["S"]["key"] == value


def test_numbers_beyond_64_bits_are_refused():
    section = Settings().make_section("S")
    for value in (2**63, -2**63 - 1, 2**64, 10**10000):
        with pytest.raises(mox.OutOfRangeError):
            section["key"] = value
        assert "key" not in section
    for number in (2**32, -1):
        with pytest.raises(mox.OutOfRangeError):
            section.add(Entry("key", "1", id=number))
    with pytest.raises(mox.OutOfRangeError):
        section.remove("key", 2**31)
    assert len(section) == 0


def test_other_types_are_refused():
    section = Settings().make_section("S")
    for value in (None, [1], {}, 1j):
        with pytest.raises(TypeError):
            section["key"] = value
    for name in (5, None, b"key"):
        with pytest.raises(TypeError):
            section[name]
        with pytest.raises(TypeError):
            section[name] = 1
        assert name not in section
    with pytest.raises(TypeError):
        section.read("key", list)
    assert len(section) == 0


@pytest.mark.parametrize("text", [" x", "a\nb", "\x01", "\uffff", "\ud800", "nul\0"])
def test_text_that_a_file_would_change_is_refused(text):
    section = Settings().make_section("S")
    with pytest.raises(mox.RefusedError):
        section["key"] = text
    assert "key" not in section


def test_two_surrogates_in_a_row_are_refused():
    table = Table("T")
    with pytest.raises(mox.InvalidTextError):
        table["key"] = "\ud83d\ude00"
    assert "\ud83d\ude00" not in table and len(table) == 0


def test_an_unpaired_surrogate_in_a_document_is_read():
    data = HEAD + '<Table name="S"><Var name="key" type="string"><Value>a\ud800b</Value></Var></Table></Settings>'
    section = Settings.parse(data.encode("utf-16-le", "surrogatepass"))["S"]
    assert section["key"] == "a\ud800b"
    assert section.entry("key").value is None


def test_long_values_and_names():
    section = Settings().make_section("S")
    section["text"] = "ä" * 100000
    section["data"] = bytes(range(256)) * 100
    section["n" * 200] = 4
    assert "n" * 200 in list(section) and section["n" * 200] == 4
    del section["n" * 200]
    section["n" * 1000] = 5
    assert section["text"] == "ä" * 100000
    assert section.read("data", bytes) == bytes(range(256)) * 100
    assert section["n" * 1000] == "5"  # no entry can tell the type of a key with such a name
    assert section.read("n" * 1000, int) == 5
    assert list(section) == ["text", "data"]


def test_a_value_of_the_presentation_data_replaces_an_empty_one(camera):
    lens = Settings.open(camera)["Lens"]
    assert lens["CalibratedOn"] == "2024-03-18"
    assert lens.entry("CalibratedOn").effective_value == "2024-03-18"
    with pytest.raises(mox.NotStoredError):
        lens["CalibratedOn"] = ""


def test_mapping():
    section = Settings().make_section("S")
    section.update(a=1, b=2.5)
    assert section.setdefault("c", "x") == "x"
    assert list(section) == ["a", "b", "c"] and len(section) == 3
    assert section == {"a": 1, "b": 2.5, "c": "x"}
    assert section.get("d") is None and section.get("d", 7) == 7
    assert section.pop("a") == 1 and "a" not in section
    assert section.read("a", int, 9) == 9 and section.read("b", str, "none") == "2.5"
    with pytest.raises(KeyError):
        section["a"]
    with pytest.raises(mox.NoSuchKeyError) as caught:
        del section["a"]
    assert str(caught.value) == "S/a: there is no such key"
    section.clear()
    assert dict(section) == {}


def test_entries_of_the_same_name():
    data = (HEAD.encode() + b'<Table name="S"><Var name="a" type="long"><Value>1</Value></Var>'
            b'<Var name="a" type="long"><Value>2</Value></Var><Var name="" type="long"><Value>3</Value></Var>'
            b'<Var name="b"><Value>4</Value></Var></Table></Settings>')
    section = Settings.parse(data)["S"]
    assert list(section) == ["a"] and len(section) == 1
    assert [(entry.name, entry.value) for entry in section.entries()] == [("a", "1"), ("a", "2"), ("", "3")]
    assert section.count_unreadable() == 1
    section.remove("a", 0)
    assert section["a"] == 2
    section.remove("")
    with pytest.raises(mox.UnreadableError):
        section["b"]
    with pytest.raises(mox.UnreadableError):
        section["b"] = 5


def test_entries_with_presentation_data(camera):
    section = Settings.open(camera)["Camera"]
    assert section.entry("Exposure") == Entry(
        "Exposure", "1800", ValueType.LONG, id=102,
        ui=Presentation(mox.Control.NUMBER, mox.Owner.APP, 3, "Exposure time",
                        "Longest time that does not blur at full belt speed", "1800"))
    section.set_comment("Exposure", "Zeit")
    section.set_shown_name("Exposure", "Belichtung")
    section.set_provider("Exposure", mox.Owner.ERG, 9)
    ui = section.entry("Exposure").ui
    assert (ui.comment, ui.shown_name, ui.provider_owner, ui.provider_index) == ("Zeit", "Belichtung", mox.Owner.ERG, 9)
    section.put(Entry("Exposure", "5", ValueType.SHORT, id=7))
    assert section.entry("Exposure").id == 7 and section.entry("Exposure").ui == ui
    with pytest.raises(mox.NameTakenError):
        section.add(Entry("Exposure"))
    with pytest.raises(mox.ProtectedError):
        section.set_value("TestPattern", "1", respect_eud=True)
    section.set_value("TestPattern", "1")
    section.rename("TestPattern", "Pattern")
    assert section["Pattern"] is True
