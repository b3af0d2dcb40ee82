import os
import sys
from pathlib import Path

import pytest

sys.path.insert(0, str(Path(__file__).parent))


@pytest.fixture
def data_folder() -> Path:
    return Path(os.environ["MOX_EXAMPLES"]) / "data"


@pytest.fixture
def front_replay() -> str:
    """The program that carries out calls through the C++ front."""
    return os.environ["MOX_FRONT_REPLAY"]


@pytest.fixture
def camera(tmp_path: Path, data_folder: Path) -> Path:
    """A copy of the settings of a camera, to be changed."""
    path = tmp_path / "camera.xml"
    path.write_bytes((data_folder / "camera.xml").read_bytes())
    return path
