"""The wheel fits every Python 3 on one platform: it has libraries in it, but nothing that is compiled for one Python."""
import os
from typing import Tuple

from setuptools import Distribution, setup
from wheel.bdist_wheel import bdist_wheel


class WithLibraries(Distribution):
    def has_ext_modules(self) -> bool:
        return True


class Wheel(bdist_wheel):
    def get_tag(self) -> Tuple[str, str, str]:
        return "py3", "none", os.environ["MOX_WHEEL_PLATFORM"]


setup(distclass=WithLibraries, cmdclass={"bdist_wheel": Wheel})
