"""Checks what no tool at hand runs: check_recipes.py QUORVANE_CPS VERSION

The package description for readers of CPS files, the vcpkg port and the Conan recipe: their
syntax, that they tell this version, and that they declare what the public headers need.
"""

import ast
import json
import pathlib
import sys


def check(condition, text):
    if not condition:
        sys.exit(f"check_recipes: {text}")


def check_cps(path, version):
    package = json.loads(path.read_text(encoding="utf-8"))
    check(package["name"] == "quorvane" and package["version"] == version, f"{path} tells another package or version")
    check("nlohmann_json" in package["requires"], f"{path} requires no nlohmann_json")
    root = path.parents[len(pathlib.PurePosixPath(package["cps_path"].removeprefix("@prefix@/")).parts)]
    for name, component in package["components"].items():
        places = [component["location"], component.get("link_location"), *component["includes"]]
        for place in filter(None, places):
            file = root / place.removeprefix("@prefix@/")
            check(file.exists(), f"{path}: {name} names {file}, which is not there")


def check_vcpkg(folder, version):
    port = json.loads((folder / "vcpkg.json").read_text(encoding="utf-8"))
    check(port["name"] == folder.name and port["version-semver"] == version, f"{folder} tells another name or version")
    check("nlohmann-json" in port["dependencies"], f"{folder} depends on no nlohmann-json")


def check_conan(path):
    recipe = ast.parse(path.read_text(encoding="utf-8"), str(path))
    operations = {node.name for node in ast.walk(recipe) if isinstance(node, ast.FunctionDef)}
    for needed in ("set_version", "export_sources", "requirements", "build", "package", "package_info"):
        check(needed in operations, f"{path} has no {needed}")
    texts = [node.value for node in ast.walk(recipe) if isinstance(node, ast.Constant) and isinstance(node.value, str)]
    check(any(text.startswith("nlohmann_json/") for text in texts), f"{path} requires no nlohmann_json")


def main():
    cps, version = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    packaging = pathlib.Path(__file__).resolve().parent
    check_cps(cps, version)
    check_vcpkg(packaging / "vcpkg" / "quorvane-common", version)
    check_conan(packaging / "conan" / "conanfile.py")
    print("check_recipes: the recipes are well")


main()
