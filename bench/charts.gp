# Draws the results of one run: the ratio of every row by group, and the cost of a byte by the size of the text.
# usage: gnuplot -c charts.gp RESULTS DIRECTORY

results = ARG1
directory = ARG2."/"
look = 'set border 3 linecolor rgb "#888888"; set grid xtics ytics linetype 1 linewidth 1 linecolor rgb "#dddddd"; \
        set tics nomirror textcolor rgb "#222222"'
set terminal svg size 860,620 dynamic font "sans-serif,13" noenhanced background "white"

# Rows are points on the line of their group, spread a little so that many stay visible.
set output directory."ratios.svg"
@look
set datafile separator tab
stats results index 1 using 1 nooutput
groups = STATS_max
set title "Time of libzel as a share of the best neighbour's\n(left of 1 libzel is faster; each small point is a row)"
set logscale x
set xrange [0.003:2]
set xtics (".005" 0.005, ".01" 0.01, ".02" 0.02, ".05" 0.05, ".1" 0.1, ".2" 0.2, ".5" 0.5, "1" 1, "2" 2)
set yrange [-groups - 0.6:-0.4]
set ytics scale 0
set key outside bottom center horizontal reverse Left
set arrow from 1, graph 0 to 1, graph 1 nohead linewidth 2 linecolor rgb "#c0392b" front
spread(row) = 0.5 * ((int(row) * 7 % 11) / 10.0 - 0.5)
of_size(name, wanted) = strstrt(name, wanted) > 0
is_line(name) = of_size(name, "100 B") || of_size(name, "120 B") || of_size(name, "lines")
is_page(name) = of_size(name, "4 KiB")
plot results index 0 using (is_line(strcol(2)) ? $7 : NaN):(-$1 + spread($0)) title "about 100 bytes" \
         with points pointtype 7 pointsize 0.45 linecolor rgb "#e08a1e", \
     '' index 0 using (is_page(strcol(2)) ? $7 : NaN):(-$1 + spread($0)) title "4 KiB" \
         with points pointtype 7 pointsize 0.45 linecolor rgb "#2e86c1", \
     '' index 0 using (is_line(strcol(2)) || is_page(strcol(2)) ? NaN : $7):(-$1 + spread($0)) \
         title "other sizes" with points pointtype 7 pointsize 0.45 linecolor rgb "#7f8c8d", \
     '' index 1 using 4:(-$1):yticlabels(2) title "mean of the group" \
         with points pointtype 5 pointsize 1 linecolor rgb "#1c2833"

reset
set output directory."sizes.svg"
@look
set datafile separator tab
set title "Nanoseconds a byte by size of the text, one character in ten outside ASCII"
set key inside top right vertical noreverse Right
set logscale xy
set xrange [12:1400000]
set xtics ("16 B" 16, "64 B" 64, "256 B" 256, "1 KiB" 1024, "4 KiB" 4096, "16 KiB" 16384, "64 KiB" 65536, \
           "256 KiB" 262144, "1 MiB" 1048576)
set yrange [0.1:20]
set ytics (".1" 0.1, ".2" 0.2, ".5" 0.5, "1" 1, "2" 2, "5" 5, "10" 10, "20" 20)
pairs = "UTF-8>Shift_JIS Shift_JIS>UTF-8 UTF-8>ISO-8859-1 ISO-8859-1>UTF-8"
colors = "#c0392b #e08a1e #2e86c1 #27ae60"
from_to(pair) = pair[1:strstrt(pair, ">") - 1]." > ".pair[strstrt(pair, ">") + 1:*]
is_size(name, pair) = strstrt(name, "size, ".from_to(pair)) == 1
plot for [i = 1:4] results index 0 using (is_size(strcol(2), word(pairs, i)) ? $3 : NaN):($4 / $3) \
         title from_to(word(pairs, i)) \
         with linespoints pointtype 7 pointsize 0.5 linewidth 2 linecolor rgb word(colors, i), \
     for [i = 1:4] results index 0 using (is_size(strcol(2), word(pairs, i)) ? $3 : NaN):($5 / $3) \
         notitle with lines dashtype 2 linewidth 1.5 linecolor rgb word(colors, i), \
     keyentry with lines dashtype 2 linewidth 1.5 linecolor rgb "#7f8c8d" title "the best neighbour of each"
