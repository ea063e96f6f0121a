"""The generators of refocus maps."""

from typing import Literal, NamedTuple


class Generator(NamedTuple):
    """A row of the table in the header zuQelRT_generators.h."""

    name: str
    call: str
    takes: Literal["disparity", "distance"]
    map_size: Literal["work", "depth"]
    summary: str


GENERATORS = {row.name: row for row in (
    Generator("gpu", "zuQelRT_GenRefocusMap", "disparity", "work",
              "weights by the distance from the focus, on the GPU"),
    Generator("disparity-base", "zuQelRT_GenRefocusMap_ZU4410_DispartyBase",
              "disparity", "work",
              "all of the foreground or background is sharp, on the GPU"),
    Generator("disparity-base-cpu",
              "zuQelRT_GenRefocusMap_ZU4410_DispartyBase_CPU", "disparity",
              "depth", "the same on the CPU"),
    Generator("distance", "zuQelRT_GenRefocusMap_Dist", "distance", "depth",
              "the same on the CPU, from distances"))}
