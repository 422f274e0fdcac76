"""layers.py SRC TABLE: fails when a file of SRC includes a folder of SRC that TABLE does not put below its own."""
import pathlib, re, sys

src, table = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]).read_text()
below = {m[1]: {m[1], *m[2].split()} for m in re.finditer(r"^(\w+):(.*)$", table, re.M)}
layers = {path.name for path in src.iterdir() if path.is_dir()}
wrong = [f"{file}:{number}: {folder}/ includes {included[1]}/, which is not below it"
         for file in sorted(src.rglob("*.[ch]*")) if (folder := file.relative_to(src).parts[0])
         for number, line in enumerate(file.read_text().splitlines(), 1)
         if (included := re.match(r'\s*#\s*include\s*"(\w+)/', line))
         and included[1] in layers and included[1] not in below.get(folder, ())]
print("\n".join(wrong) or f"{len(layers)} folders, each including only the layers below it")
sys.exit(bool(wrong))
