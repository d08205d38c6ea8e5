"""The unit programs of the tests, as tests/CMakeLists.txt builds them."""
import pathlib

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"


def programs_of(*folders):
    """The programs of folders below tests/: one for each folder that holds tests."""
    tests = [test for folder in folders for test in (TESTS / folder).rglob("*_test.cpp")]
    return ["unit_" + str(folder.relative_to(TESTS)).replace("/", "_")
            for folder in sorted({test.parent for test in tests})]
