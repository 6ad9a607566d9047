"""What the generator scripts share: doubles written so that a reader gets the very same double
back, and tables written beside the script that makes them."""
import os


def fmt(values):
    """17 significant digits each, space separated; None (no value) as 'nan'."""
    return " ".join("nan" if v is None else "%.17g" % v for v in values)


def write_beside(script, name, text):
    """Writes text to the file name in the folder of the script (its __file__)."""
    with open(os.path.join(os.path.dirname(os.path.abspath(script)), name), "w") as out:
        out.write(text)
