# Writes DISCS catalogues of about FILES file lines and FOLDERS folder lines
# each into DIR, with random names, paths, sizes, dates and descriptions, so
# that no two lines share a shape a branch predictor could learn. The word
# "Xylophon" (in any case) is planted rarely: inside, at the start and at the
# end of names, as a whole name, and in descriptions, so that every operator
# finds a few hundred hits and no run nears the hit limit.
#
#   awk -v discs=40 -v files=20000 -v folders=1500 -v dir=Daten -v seed=7 -f gen.awk
function word(lo, hi,    n, s, i) {
    n = lo + int(rand() * (hi - lo + 1))
    s = ""
    for (i = 0; i < n; i++) s = s substr(chars, 1 + int(rand() * nchars), 1)
    return s
}
function plant(name,    r) {
    r = rand()
    if (r < 0.0003) return word(2, 8) "xYlOphon" word(1, 8)
    if (r < 0.0006) return "XYLOPHON" name
    if (r < 0.0009) return word(2, 12) "Xylophon"
    if (r < 0.00105) return "xylophon"
    return name
}
function date() {
    return sprintf("%02d.%02d.%d %02d:%02d:%02d", 1 + int(rand() * 28), 1 + int(rand() * 12),
                   1980 + int(rand() * 45), int(rand() * 24), int(rand() * 60), int(rand() * 60))
}
function descr(    r, n, s, i) {
    r = rand()
    if (r < 0.0004) return "Konzert mit Xylophon " word(3, 9)
    if (r > 0.05) return ""
    n = 1 + int(rand() * 6)
    s = word(2, 10)
    for (i = 1; i < n; i++) s = s " " word(2, 10)
    return s
}
BEGIN {
    srand(seed)
    chars = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 _-.()"
    nchars = length(chars)
    split("jpg htm txt doc pdf mp3 avi zip mkv flac iso png c h", ext, " ")
    split("R|A|R H|R H S A||N|A T|R A", attr, "|")
    for (d = 1; d <= discs; d++) {
        out = sprintf("%s/Disc%s %04d.idx", dir, word(3, 10), d)
        nf = int(folders * (0.5 + rand()))
        nfi = int(files * (0.5 + rand()))
        printf "%d|%d|%s|%d|1|2048|%s\r\n\r\n", int(rand() * 4.7e9), int(rand() * 4e9) - 2e9,
            (rand() < 0.5 ? "UDF" : "CDFS"), int(rand() * 2.3e6), descr() > out
        # Folders in walk order: each below a random earlier one (or the root).
        for (f = 0; f < nf; f++) {
            parent = (f == 0 || rand() < 0.2) ? "" : path[int(rand() * f)]
            path[f] = parent "\\" plant(word(3, 16))
            printf "%s|%s|%s|%s\r\n", path[f], attr[1 + int(rand() * 8)], date(), descr() > out
        }
        printf "\r\n" > out
        for (i = 0; i < nfi; i++) {
            folder = (nf == 0 || rand() < 0.05) ? "" : path[int(rand() * nf)]
            name = word(3, 24) "." ext[1 + int(rand() * 14)]
            size = int(exp(rand() * 21.5))
            if (rand() < 0.001) size = -size
            printf "%s\\%s|%d|%s|%s|%s\r\n", folder, plant(name), size, attr[1 + int(rand() * 8)],
                date(), descr() > out
        }
        close(out)
    }
}
