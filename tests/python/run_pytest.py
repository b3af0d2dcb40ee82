"""run_pytest.py <python> <argument of pytest>...: runs the pytest of another Python in an environment that has none."""
import subprocess
import sys

FIND = "import os, pytest; print(os.path.dirname(os.path.dirname(pytest.__file__)))"

if __name__ == "__main__":
    found = subprocess.run([sys.argv[1], "-c", FIND], stdout=subprocess.PIPE, check=True, text=True).stdout.strip()
    sys.path.append(found)
    import pytest
    sys.exit(pytest.main(sys.argv[2:]))
