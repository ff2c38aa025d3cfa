#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares a sample of the parameter files with numbers that were worked out from the table of fluids by hand, and
checks the formulas behind the numbers in every file.

    sample_test.py SOURCE_FOLDER [TEST...]

Nothing here is shared with the generator. The expected records stand below. The files are read as the library reads
them: values are in free format, r*c repeats a value, and everything behind the last wanted value is a comment.
"""
import math
import pathlib
import re
import sys
import unittest
from decimal import Decimal

FLUIDS = pathlib.Path(sys.argv[1]) / "Fluids"

# There is a line for each record, in the order of the file: the values and, behind the bar, the words that the comment
# must have. The formula with its numbers stands behind #, if there is one; R is 8314/MM, but 8.314463 J/(mol K) in Zc.
SAMPLE = {
    "argon": """
        heading | formula; CAS number; R740; noble gases
        argon
        Ar  7440-37-1
        heading |
        39.948 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        150.687 | Tc; [K]; (COOLPROP)
        47.99407846 | Pc; [atm]; 4863000 Pa; (COOLPROP)                    # 4863000/101325 = 47.994078460
        0.28950 | Zc; 7.45855e-05 m3/mol; (COOLPROP)                       # 4863000 7.45855e-05/(8.314463 150.687)
        87.502 | Tb; [K]; omega = -0.00219 (COOLPROP); boiling; 87.302 K (HEOS)
        0.00000 | mur; 0 debye; (CHEMSEP)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        1 | function_type; constant; (THEORY(monatomic))
        312.180835 | cv_0; [J/(kg K)]; 1.5 R                               # 1.5 8314/39.948
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "helium": """
        heading | formula; CAS number; R704; noble gases
        helium-4
        He  7440-59-7
        heading |
        4.002602 | MM; [kg/kmol]; (HEOS)
        T | vapor
        5.1953 | Tc; [K]; (HEOS)
        2.253343203 | Pc; [atm]; 228320 Pa; (HEOS)                         # 228320/101325 = 2.253343203
        0.30406 | Zc; 5.75252e-05 m3/mol; (HEOS)                           # 228320 5.75252e-05/(8.314463 5.1953)
        4.172 | Tb; [K]; omega = -0.3836 (HEOS); boiling; 4.224 K (HEOS)
        0.00000 | mur; 0 debye; (CHEMSEP)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        1 | function_type; constant; (THEORY(monatomic))
        3115.72322 | cv_0; [J/(kg K)]; 1.5 R                               # 1.5 8314/4.002602
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "nitrogen": """
        heading | formula; CAS number; R728; permanent gases
        nitrogen
        N2  7727-37-9
        heading |
        28.01348 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        126.192 | Tc; [K]; (COOLPROP)
        33.51394029 | Pc; [atm]; 3395800 Pa; (COOLPROP)                    # 3395800/101325 = 33.513940291
        0.28939 | Zc; 8.94142e-05 m3/mol; (COOLPROP)                       # 3395800 8.94142e-05/(8.314463 126.192)
        77.408 | Tb; [K]; omega = 0.0372 (COOLPROP); boiling; 77.355 K (HEOS)
        0.00000 | mur; 0 debye; (CCCBDB)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.08 %; (FIT(COOLPROP))
        741.964226 | cv_0; [J/(kg K)]; 2.5 R                               # 2.5 8314/28.01348
        1 | temperatures
        3315.6 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "water": """
        heading | formula; CAS number; R718; inorganic
        water
        H2O  7732-18-5
        heading |
        18.01527 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        647.096 | Tc; [K]; (COOLPROP)
        217.7547496 | Pc; [atm]; 22064000 Pa; (COOLPROP)                   # 22064000/101325 = 217.754749568
        0.22944 | Zc; 5.5948e-05 m3/mol; (COOLPROP)                        # 22064000 5.5948e-05/(8.314463 647.096)
        370.751 | Tb; [K]; omega = 0.34429 (COOLPROP); boiling; 373.124 K (HEOS)
        1.28006 | mur; 1.855 debye; (PYCHEMQT)                             # 131.3 1.855/sqrt(55.948 647.096)
        0.075908 | kh; (CHUNG1984)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.07 %; (FIT(COOLPROP))
        1390.26087 | cv_0; [J/(kg K)]; 3.0125 R                            # 3.0125 8314/18.01527
        3 | temperatures
        2298.5 2*5250.4 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "d2o": """
        heading | formula; CAS number; R718b; inorganic
        heavy water
        D2O  7789-20-0
        heading |
        20.02751 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        643.847 | Tc; [K]; (COOLPROP)
        213.7856501 | Pc; [atm]; 21661831 Pa; (COOLPROP)                   # 21661831/101325 = 213.785650136
        0.22764 | Zc; 5.6257e-05 m3/mol; (COOLPROP)                        # 21661831 5.6257e-05/(8.314463 643.847)
        371.743 | Tb; [K]; omega = 0.36422 (COOLPROP); boiling; 374.549 K (HEOS)
        1.31081 | mur; 1.9 debye; (PYCHEMQT)                               # 131.3 1.9/sqrt(56.257 643.847)
        0 | kh; not known
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.18 %; (FIT(COOLPROP))
        1251.15726 | cv_0; [J/(kg K)]; 3.0139 R                            # 3.0139 8314/20.02751
        3 | temperatures
        1720.3 2*3836.7 | Tv; [K]
        4 | viscosity_model; corresponding states; association factor not known
        1 | thermal_cond_model; constant
        0.02796 | kk_const; [W/(m K)]; 375 K; Eucken                       # 1.1138e-05 (1.32 1345.05 + 1.77 415.129)
        """,
    "co2": """
        heading | formula; CAS number; R744; inorganic
        carbon dioxide
        CO2  124-38-9
        heading |
        44.0098 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        304.1282 | Tc; [K]; (COOLPROP)
        72.80829017 | Pc; [atm]; 7377300 Pa; (COOLPROP)                    # 7377300/101325 = 72.808290155
        0.27459 | Zc; 9.41185e-05 m3/mol; (COOLPROP)                       # 7377300 9.41185e-05/(8.314463 304.1282)
        184.091 | Tb; [K]; omega = 0.22394 (COOLPROP); sublimation; 194.686 K (PYCHEMQT)
        0.00000 | mur; 0 debye; (CCCBDB)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.1 %; (FIT(COOLPROP))
        472.281174 | cv_0; [J/(kg K)]; 2.5 R                               # 2.5 8314/44.0098
        4 | temperatures
        2*957.3 1952.2 3280.5 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "ammonia": """
        heading | formula; CAS number; R717; inorganic
        ammonia
        NH3  7664-41-7
        heading |
        17.03052 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        405.56 | Tc; [K]; (COOLPROP)
        112.1479497 | Pc; [atm]; 11363391 Pa; (COOLPROP)                   # 11363391/101325 = 112.147949667
        0.24605 | Zc; 7.3014e-05 m3/mol; (COOLPROP)                        # 11363391 7.3014e-05/(8.314463 405.56)
        238.621 | Tb; [K]; omega = 0.25569 (COOLPROP); boiling; 239.834 K (HEOS)
        1.12163 | mur; 1.47 debye; (PYCHEMQT)                              # 131.3 1.47/sqrt(73.014 405.56)
        0 | kh; not known
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.06 %; (FIT(COOLPROP))
        1464.54718 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/17.03052
        6 | temperatures
        2839.7 2*1605.8 3*4618.2 | Tv; [K]
        5 | viscosity_model; Sutherland; 200-1000 K; 5.5 %; (FIT(CHEMSEP)); association factor not known
        1.0207e-05 300 570.02 | mu_ref_s; [Pa s]; T_ref_s [K]; Tchar_s [K]
        1 | thermal_cond_model; constant
        0.0304 | kk_const; [W/(m K)]; 300 K; Eucken                        # 1.0207e-05 (1.32 1601.74 + 1.77 488.182)
        """,
    "methane": """
        heading | formula; CAS number; R50; n-alkanes
        methane
        CH4  74-82-8
        heading |
        16.0428 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        190.564 | Tc; [K]; (COOLPROP)
        45.39057488 | Pc; [atm]; 4599200 Pa; (COOLPROP)                    # 4599200/101325 = 45.390574883
        0.28629 | Zc; 9.86278e-05 m3/mol; (COOLPROP)                       # 4599200 9.86278e-05/(8.314463 190.564)
        111.958 | Tb; [K]; omega = 0.01142 (COOLPROP); boiling; 111.667 K (HEOS)
        0.00000 | mur; 0 debye; (CCCBDB)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.2 %; (FIT(COOLPROP))
        1559.06934 | cv_0; [J/(kg K)]; 3.0084 R                            # 3.0084 8314/16.0428
        10 | temperatures
        5*1987.1 5*4530.3 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "isobutan": """
        heading | formula; CAS number; R600a; branched alkanes
        isobutane
        C4H10  75-28-5
        heading |
        58.1222 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        407.817 | Tc; [K]; (COOLPROP)
        35.81544535 | Pc; [atm]; 3629000 Pa; (COOLPROP)                    # 3629000/101325 = 35.815445349
        0.27586 | Zc; 0.000257748 m3/mol; (COOLPROP)                       # 3629000 0.000257748/(8.314463 407.817)
        260.961 | Tb; [K]; omega = 0.18353 (COOLPROP); boiling; 261.401 K (HEOS)
        0.05346 | mur; 0.132 debye; (PYCHEMQT)                             # 131.3 0.132/sqrt(257.748 407.817)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.07 %; (FIT(COOLPROP))
        610.609574 | cv_0; [J/(kg K)]; 4.2687 R                            # 4.2687 8314/58.1222
        33 | temperatures
        6*579.8 17*1683.5 10*4103.5 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "cyclohex": """
        heading | formula; CAS number; cycloalkanes
        cyclohexane
        C6H12  110-82-7
        heading |
        84.15948 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        553.6 | Tc; [K]; (COOLPROP)
        40.29015544 | Pc; [atm]; 4082400 Pa; (COOLPROP)                    # 4082400/101325 = 40.290155440
        0.27510 | Zc; 0.000310174 m3/mol; (COOLPROP)                       # 4082400 0.000310174/(8.314463 553.6)
        352.860 | Tb; [K]; omega = 0.20926 (COOLPROP); boiling; 353.865 K (HEOS)
        0.00000 | mur; 0 debye; (SYMMETRY)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.42 %; (FIT(COOLPROP))
        296.3659 | cv_0; [J/(kg K)]; 3 R                                   # 3 8314/84.15948
        45 | temperatures
        18*951.9 27*2363.9 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "propylen": """
        heading | formula; CAS number; R1270; alkenes and alkynes
        propylene
        C3H6  115-07-1
        heading |
        42.07974 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        364.211 | Tc; [K]; (COOLPROP)
        44.95435480 | Pc; [atm]; 4555000 Pa; (COOLPROP)                    # 4555000/101325 = 44.954354799
        0.27564 | Zc; 0.000183251 m3/mol; (COOLPROP)                       # 4555000 0.000183251/(8.314463 364.211)
        225.087 | Tb; [K]; omega = 0.146 (COOLPROP); boiling; 225.531 K (HEOS)
        0.18601 | mur; 0.366 debye; (PYCHEMQT)                             # 131.3 0.366/sqrt(183.251 364.211)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.13 %; (FIT(COOLPROP))
        667.653099 | cv_0; [J/(kg K)]; 3.3792 R                            # 3.3792 8314/42.07974
        20 | temperatures
        4*700.2 10*1845.3 6*4286.9 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "toluene": """
        heading | formula; CAS number; aromatics
        toluene
        C7H8  108-88-3
        heading |
        92.13842 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        591.75 | Tc; [K]; (COOLPROP)
        40.72045398 | Pc; [atm]; 4126000 Pa; (COOLPROP)                    # 4126000/101325 = 40.720453985
        0.26463 | Zc; 0.000315557 m3/mol; (COOLPROP)                       # 4126000 0.000315557/(8.314463 591.75)
        382.988 | Tb; [K]; omega = 0.2657 (COOLPROP); boiling; 383.746 K (HEOS)
        0.10939 | mur; 0.36 debye; (PYCHEMQT)                              # 131.3 0.36/sqrt(315.557 591.75)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.09 %; (FIT(COOLPROP))
        270.701408 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/92.13842
        37 | temperatures
        8*601.5 20*1601.4 9*3575.5 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "ethanol": """
        heading | formula; CAS number; alcohols and glycols
        ethanol
        C2H6O  64-17-5
        heading |
        46.06844 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        514.71 | Tc; [K]; (COOLPROP)
        61.86035037 | Pc; [atm]; 6268000 Pa; (COOLPROP)                    # 6268000/101325 = 61.860350358
        0.24699 | Zc; 0.000168634 m3/mol; (COOLPROP)                       # 6268000 0.000168634/(8.314463 514.71)
        350.859 | Tb; [K]; omega = 0.644 (COOLPROP); boiling; 351.570 K (HEOS)
        0.75358 | mur; 1.691 debye; (PYCHEMQT)                             # 131.3 1.691/sqrt(168.634 514.71)
        0.174823 | kh; (CHUNG1984)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.07 %; (FIT(COOLPROP))
        757.344963 | cv_0; [J/(kg K)]; 4.1965 R                            # 4.1965 8314/46.06844
        19 | temperatures
        3*785.6 10*1781.5 6*4490.0 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "acetone": """
        heading | formula; CAS number; ketones and aldehydes
        acetone
        C3H6O  67-64-1
        heading |
        58.07914 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        508.1 | Tc; [K]; (COOLPROP)
        46.38539355 | Pc; [atm]; 4700000 Pa; (COOLPROP)                    # 4700000/101325 = 46.385393536
        0.23671 | Zc; 0.000212766 m3/mol; (COOLPROP)                       # 4700000 0.000212766/(8.314463 508.1)
        328.575 | Tb; [K]; omega = 0.3071 (COOLPROP); boiling; 329.225 K (HEOS)
        1.15009 | mur; 2.88 debye; (PYCHEMQT)                              # 131.3 2.88/sqrt(212.766 508.1)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.01 %; (FIT(COOLPROP))
        541.620458 | cv_0; [J/(kg K)]; 3.7836 R                            # 3.7836 8314/58.07914
        21 | temperatures
        3*370.5 11*1585.9 7*3490.3 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "dme": """
        heading | formula; CAS number; RE170; ethers and epoxides
        dimethyl ether
        C2H6O  115-10-6
        heading |
        46.06844 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        400.378 | Tc; [K]; (COOLPROP)
        52.67012090 | Pc; [atm]; 5336800 Pa; (COOLPROP)                    # 5336800/101325 = 52.670120898
        0.26989 | Zc; 0.00016835 m3/mol; (COOLPROP)                        # 5336800 0.00016835/(8.314463 400.378)
        247.621 | Tb; [K]; omega = 0.196 (COOLPROP); boiling; 248.368 K (HEOS)
        0.65796 | mur; 1.301 debye; (PYCHEMQT)                             # 131.3 1.301/sqrt(168.35 400.378)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.11 %; (FIT(COOLPROP))
        638.667483 | cv_0; [J/(kg K)]; 3.5389 R                            # 3.5389 8314/46.06844
        19 | temperatures
        3*491.8 9*1707.2 7*3729.7 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "dmc": """
        heading | formula; CAS number; esters and carbonates
        dimethyl carbonate
        C3H6O3  616-38-6
        heading |
        90.0779 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        557 | Tc; [K]; (COOLPROP)
        48.44608932 | Pc; [atm]; 4908800 Pa; (COOLPROP)                    # 4908800/101325 = 48.446089317
        0.26499 | Zc; 0.00025 m3/mol; (COOLPROP)                           # 4908800 0.00025/(8.314463 557)
        362.490 | Tb; [K]; omega = 0.346 (COOLPROP); boiling; 363.256 K (HEOS)
        0.31632 | mur; 0.899 debye; (PYCHEMQT)                             # 131.3 0.899/sqrt(250 557)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.17 %; (FIT(COOLPROP))
        276.893666 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/90.0779
        24 | temperatures
        7*115.2 17*1682.4 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "acetacid": """
        heading | formula; CAS number; acids
        acetic acid
        C2H4O2  64-19-7
        heading |
        60.05196 | MM; [kg/kmol]; (PYCHEMQT)
        T | vapor
        590.7 | Tc; [K]; (PYCHEMQT)
        57.10338021 | Pc; [atm]; 5786000 Pa; (PYCHEMQT)                    # 5786000/101325 = 57.103380212
        0.20156 | Zc; 0.000171088 m3/mol; (PYCHEMQT)                       # 5786000 0.000171088/(8.314463 590.7)
        390.321 | Tb; [K]; omega = 0.4665 (PYCHEMQT); boiling; 391.200 K (PYCHEMQT)
        0.70213 | mur; 1.7 debye; (CCCBDB)                                 # 131.3 1.7/sqrt(171.088 590.7)
        0.091549 | kh; (CHUNG1984)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.15 %; (FIT(TRC))
        415.340315 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/60.05196
        18 | temperatures
        3*570.8 9*1539.7 6*3439.4 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "aniline": """
        heading | formula; CAS number; aromatics
        aniline
        C6H7N  62-53-3
        heading |
        93.129 | MM; [kg/kmol]; (CIAAW)
        T | vapor
        705 | Tc; [K]; (IUPAC)
        55.56377992 | Pc; [atm]; 5630000 Pa; (IUPAC)                       # 5630000/101325 = 55.563779916
        0.27950 | Zc; 0.000291 m3/mol; (IUPAC)                             # 5630000 0.000291/(8.314463 705)
        455.288 | Tb; [K]; vapor pressure; boiling; 457.170 K (CHEMSEP); 457.240; omega = 0.38 (CHEMSEP)
        0.44352 | mur; 1.53 debye; (CCCBDB)                                # 131.3 1.53/sqrt(291 705)
        0 | kh; not known
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.13 %; (FIT(TRC))
        267.822053 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/93.129
        34 | temperatures
        960.0 10*676.5 16*1658.0 7*3686.4 | Tv; [K]
        5 | viscosity_model; Sutherland; 267.13-1000 K; 1.5 %; (FIT(CHEMSEP)); association factor not known
        6.7086e-06 300 487.98 | mu_ref_s; [Pa s]; T_ref_s [K]; Tchar_s [K]
        1 | thermal_cond_model; constant
        0.0241 | kk_const; [W/(m K)]; 457 K; Eucken                        # 1.0518e-05 (1.32 1616.49 + 1.77 89.274)
        """,
    "glycerol": """
        heading | formula; CAS number; alcohols and glycols
        glycerol
        C3H8O3  56-81-5
        heading |
        92.094 | MM; [kg/kmol]; (CIAAW)
        T | vapor
        850 | Tc; [K]; (IUPAC)
        74.01924500 | Pc; [atm]; 7500000 Pa; (PSRK)                        # 7500000/101325 = 74.019245004
        0.27061 | Zc; 0.000255 m3/mol; (PSRK)                              # 7500000 0.000255/(8.314463 850)
        560.806 | Tb; [K]; vapor pressure; boiling; 563.150 K (CHEMSEP); 555.734; omega = 0.513 (YAWS)
        0.75586 | mur; 2.68 debye; (PYQDB)                                 # 131.3 2.68/sqrt(255 850)
        0.221409 | kh; (CHUNG_EQ10)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 273-1000 K; 0.17 %; (FIT(CHEMSEP_RPP))
        588.409551 | cv_0; [J/(kg K)]; 6.5178 R                            # 6.5178 8314/92.094
        31 | temperatures
        10*845.7 11*1807.0 10*4654.5 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "r134a": """
        heading | formula; CAS number; R134a; refrigerants HFC
        1,1,1,2-tetrafluoroethane
        C2H2F4  811-97-2
        heading |
        102.032 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        374.21 | Tc; [K]; (COOLPROP)
        40.06197879 | Pc; [atm]; 4059280 Pa; (COOLPROP)                    # 4059280/101325 = 40.061978781
        0.26005 | Zc; 0.00019932 m3/mol; (COOLPROP)                        # 4059280 0.00019932/(8.314463 374.21)
        246.566 | Tb; [K]; omega = 0.32684 (COOLPROP); boiling; 247.076 K (HEOS)
        0.98941 | mur; 2.058 debye; (PYCHEMQT)                             # 131.3 2.058/sqrt(199.32 374.21)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.35 %; (FIT(COOLPROP<455K,BURCAT))
        269.99803 | cv_0; [J/(kg K)]; 3.3135 R                             # 3.3135 8314/102.032
        17 | temperatures
        7*599.2 9*1752.9 8377.4 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "r1234yf": """
        heading | formula; CAS number; R1234yf; refrigerants HFO/HCFO
        2,3,3,3-tetrafluoropropene
        C3H2F4  754-12-1
        heading |
        114.0416 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        367.85 | Tc; [K]; (COOLPROP)
        33.40143104 | Pc; [atm]; 3384400 Pa; (COOLPROP)                    # 3384400/101325 = 33.401431039
        0.26473 | Zc; 0.000239234 m3/mol; (COOLPROP)                       # 3384400 0.000239234/(8.314463 367.85)
        243.321 | Tb; [K]; omega = 0.276 (COOLPROP); boiling; 243.665 K (HEOS)
        1.09766 | mur; 2.48 debye; (PYCHEMQT)                              # 131.3 2.48/sqrt(239.234 367.85)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.03 %; (FIT(COOLPROP))
        333.13856 | cv_0; [J/(kg K)]; 4.5696 R                             # 4.5696 8314/114.0416
        19 | temperatures
        8*637.4 9*1645.2 2*4753.7 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "r404a": """
        heading | formula; refrigerant blends (pseudo-pure)
        R404A (pseudo-pure)
        R125/R143a/R134a 44/52/4 mass
        heading |
        97.6038 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        345.27 | Tc; [K]; (COOLPROP)
        36.85961017 | Pc; [atm]; 3734800 Pa; (COOLPROP)                    # 3734800/101325 = 36.859610165
        0.26336 | Zc; 0.000202429 m3/mol; (COOLPROP)                       # 3734800 0.000202429/(8.314463 345.27)
        227.265 | Tb; [K]; omega = 0.293 (COOLPROP); boiling; 226.930 K (PYCHEMQT)
        0 | mur; not known
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-500 K; 0.02 %; (FIT(COOLPROP))
        404.090667 | cv_0; [J/(kg K)]; 4.7439 R                            # 4.7439 8314/97.6038
        19 | temperatures
        7*813.3 7*1900.5 5*5768.1 | Tv; [K]
        4 | viscosity_model; corresponding states; dipole moment not known
        1 | thermal_cond_model; constant
        0.01454 | kk_const; [W/(m K)]; 300 K; Eucken                       # 1.2308e-05 (1.32 780.923 + 1.77 85.1811)
        """,
    "mdm": """
        heading | formula; CAS number; siloxanes
        octamethyltrisiloxane (MDM)
        C8H24O2Si3  107-51-7
        heading |
        236.5315 | MM; [kg/kmol]; (HEOS)
        T | vapor
        565.3609 | Tc; [K]; (HEOS)
        14.18702196 | Pc; [atm]; 1437500 Pa; (HEOS)                        # 1437500/101325 = 14.187021959
        0.26967 | Zc; 0.000881834 m3/mol; (HEOS)                           # 1437500 0.000881834/(8.314463 565.3609)
        427.033 | Tb; [K]; omega = 0.524 (HEOS); boiling; 425.630 K (HEOS)
        0.20065 | mur; 1.079 debye; (PYCHEMQT)                             # 131.3 1.079/sqrt(881.834 565.3609)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.14 %; (FIT(COOLPROP))
        1114.35646 | cv_0; [J/(kg K)]; 31.7032 R                           # 31.7032 8314/236.5315
        73 | temperatures
        1551.0 45*1551.0 27*4301.4 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "sf6": """
        heading | formula; CAS number; inorganic
        sulfur hexafluoride
        SF6  2551-62-4
        heading |
        146.0554 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        318.7232 | Tc; [K]; (COOLPROP)
        37.05880089 | Pc; [atm]; 3754983 Pa; (COOLPROP)                    # 3754983/101325 = 37.058800888
        0.27880 | Zc; 0.000196761 m3/mol; (COOLPROP)                       # 3754983 0.000196761/(8.314463 318.7232)
        204.876 | Tb; [K]; omega = 0.21 (COOLPROP); sublimation; 209.250 K (CHEMSEP)
        0.00000 | mur; 0 debye; (CCCBDB)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.06 %; (FIT(COOLPROP))
        170.770817 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/146.0554
        15 | temperatures
        8*636.5 7*1194.2 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "bicychex": """
        heading | formula; CAS number; cycloalkanes
        bicyclohexyl
        C12H22  92-51-3
        heading |
        166.308 | MM; [kg/kmol]; (CIAAW)
        T | vapor
        727 | Tc; [K]; (PINAMARTINES)
        25.26523563 | Pc; [atm]; 2560000 Pa; (PINAMARTINES)                # 2560000/101325 = 25.265235628
        0.25326 | Zc; 0.000598 m3/mol; (PINAMARTINES)                      # 2560000 0.000598/(8.314463 727)
        511.638 | Tb; [K]; omega = 0.428 (YAWS); boiling; 512.150 K (CRC_ORG)
        0 | mur; not known
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 298.15-1000 K; 0.05 %; (FIT(PYQDB))
        149.974746 | cv_0; [J/(kg K)]; 3 R                                 # 3 8314/166.308
        96 | temperatures
        14*370.8 49*1408.9 33*3176.5 | Tv; [K]
        5 | viscosity_model; Sutherland; 512.19-1000 K; 0.29 %; (FIT(PYQDB)); dipole moment not known
        5.2786e-06 300 364.62 | mu_ref_s; [Pa s]; T_ref_s [K]; Tchar_s [K]
        1 | thermal_cond_model; constant
        0.02787 | kk_const; [W/(m K)]; 512 K; Eucken                       # 8.9229e-06 (1.32 2299.48 + 1.77 49.9916)
        """,
    "novec649": """
        heading | formula; CAS number; perfluorocarbons and fluoroethers
        FK-5-1-12
        C6F12O  756-13-8
        heading |
        316.0438 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        441.81 | Tc; [K]; (COOLPROP)
        18.44585837 | Pc; [atm]; 1869026.6 Pa; (COOLPROP)                  # 1869026.6/101325 = 18.445858377
        0.26500 | Zc; 0.000520833 m3/mol; (COOLPROP)                       # 1869026.6 0.000520833/(8.314463 441.81)
        322.769 | Tb; [K]; omega = 0.47102 (COOLPROP); boiling; 322.202 K (HEOS)
        0.11770 | mur; 0.43 debye; (PYCHEMQT)                              # 131.3 0.43/sqrt(520.833 441.81)
        0 | kh; (NONASSOC)
        4 | gas_type; Soave-Redlich-Kwong
        F | coeff_adim
        5 | function_type; 200-1000 K; 0.07 %; (FIT(COOLPROP))
        783.093936 | cv_0; [J/(kg K)]; 29.7681 R                           # 29.7681 8314/316.0438
        30 | temperatures
        27*1902.8 3*2390.8 | Tv; [K]
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
    "argon-iz": """
        heading | formula; CAS number; R740; noble gases
        argon
        Ar  7440-37-1
        heading |
        39.948 | MM; [kg/kmol]; (COOLPROP)
        T | vapor
        150.687 | Tc; [K]; (COOLPROP)
        47.99407846 | Pc; [atm]; 4863000 Pa; (COOLPROP)                    # 4863000/101325 = 47.994078460
        0.28950 | Zc; 7.45855e-05 m3/mol; (COOLPROP)                       # 4863000 7.45855e-05/(8.314463 150.687)
        87.502 | Tb; [K]; omega = -0.00219 (COOLPROP); boiling; 87.302 K (HEOS)
        0.00000 | mur; 0 debye; (CHEMSEP)
        0 | kh; (NONASSOC)
        8 | gas_type; constant Z
        0.9863 | Z_const; 271.24 K; 1.459 MPa; (COOLPROP)
        F | coeff_adim
        1 | function_type; constant; (THEORY(monatomic))
        312.180835 | cv_0; [J/(kg K)]; 1.5 R                               # 1.5 8314/39.948
        3 | viscosity_model; Chung
        3 | thermal_cond_model; Chung
        """,
}

MODELS = {
    "gas_type": {1: "ideal gas", 2: "van der Waals", 3: "Martin-Hou", 4: "Soave-Redlich-Kwong", 5: "Peng-Robinson",
                 6: "Redlich-Kwong", 7: "Clausius II", 8: "ideal gas with constant Z"},
    "viscosity_model": {3: "Chung, dense gas", 4: "corresponding states", 5: "Sutherland's law"},
    "thermal_cond_model": {1: "constant", 3: "Chung, dense gas"},
}
NUMBERS = {"MM", "Tc", "Pc", "Zc", "mur", "cv_0", "kk_const"}
UNITS = {"MM": "[kg/kmol]", "Tc": "[K]", "Pc": "[atm]", "Tb": "[K]", "cv_0": "[J/(kg K)]", "Tv": "[K]",
         "mu_ref_s": "[Pa s]", "kk_const": "[W/(m K)]"}


def expand(word):
    """The values of a word in free format; 2*601.5 stands for two values."""
    count, _, value = word.rpartition("*")
    return [value] * int(count or 1)


class Reader:
    """Reads the records of a parameter file one after the other."""

    def __init__(self, file):
        self.lines = file.read_bytes().decode("ascii").split("\n")
        self.records = []  # (name, values, comment)

    def text(self):
        return self.lines.pop(0)

    def take(self, what, wanted=1):
        """Returns the first of the wanted values, and keeps all of them with the comment. They may continue on the next
        line."""
        values = []
        while len(values) < wanted:
            words = self.text().replace(",", " , ").split(" ")
            while len(values) < wanted and words:
                word = words.pop(0)
                if word not in ("", ","):
                    values += expand(word)
        if len(values) != wanted:
            raise ValueError(f"{what}: {len(values)} values for {wanted}")
        self.records.append((what, values, " ".join(words).strip().replace(" , ", ",")))
        return values[0]


def read(file):
    """All records of a file with critical data; the lines behind them are kept as the record "rest"."""
    reader = Reader(file)
    for what, width in ("heading", 0), ("name", 32), ("label", 32), ("heading", 0):
        text = reader.text()
        reader.records.append((what, [text[:width].rstrip()] if width else [], text[width:].strip()))
    reader.take("MM")
    if reader.take("vapor") != "T":
        raise ValueError("no critical data")
    for what in "Tc", "Pc", "Zc", "Tb", "mur", "kh":
        reader.take(what)
    if reader.take("gas_type") == "8":
        reader.take("Z_const")
    if reader.take("coeff_adim") != "F":
        raise ValueError("coefficients without dimension")
    function = reader.take("function_type")
    if function not in ("1", "5"):
        raise ValueError(f"function_type {function}")
    reader.take("cv_0")
    if function == "5":
        reader.take("Tv", int(reader.take("NV")))
    if reader.take("viscosity_model") == "5":
        reader.take("mu_ref_s", 3)
    if reader.take("thermal_cond_model") == "1":
        reader.take("kk_const")
    reader.records.append(("rest", [], "\n".join(reader.lines)))
    return reader.records


def half(text):
    """Half a unit of the last printed digit."""
    return float(Decimal(1).scaleb(Decimal(text).as_tuple().exponent)) / 2


def digit(value, n):
    """Half a unit of the n-th significant digit, to which a number of the table is rounded."""
    return 0.5 * 10 ** (math.floor(math.log10(value)) + 1 - n)


def number(pattern, comment):
    """The number in a comment, as text."""
    return re.search(pattern.replace("NUMBER", r"(-?[0-9.]+(?:e-?\d+)?)"), comment)[1]


def einstein(x):
    return x * x * math.exp(x) / math.expm1(x) ** 2


class Sample(unittest.TestCase):
    def same(self, expected, value):
        """Requires the same number, whatever zeros it ends with, or the same text."""
        try:
            expected, value = Decimal(expected), Decimal(value)
        except ArithmeticError:
            pass
        self.assertEqual(expected, value)

    def test_the_records_are_those_of_the_table(self):
        for fluid, block in SAMPLE.items():
            expected = [line.partition("#")[0].strip() for line in block.strip().splitlines()]
            found = read(FLUIDS / f"{fluid}.osd")
            self.assertEqual(len(found), len(expected) + 1, fluid)
            for (what, values, comment), line in zip(found, expected):
                with self.subTest(fluid=fluid, record=what):
                    wanted, _, phrases = line.partition("|")
                    if what in ("name", "label"):
                        self.assertEqual(values, [wanted])
                    elif what != "heading":
                        wanted = [value for word in wanted.split() for value in expand(word)]
                        self.assertEqual(len(values), len(wanted))
                        for pair in zip(wanted, values):
                            self.same(*pair)
                    for phrase in filter(None, map(str.strip, phrases.split(";"))):
                        self.assertRegex(comment, rf"(?<![\w.-]){re.escape(phrase)}(?![\w.])")

    def test_every_comment_names_unit_and_model(self):
        self.assertGreater(len(list(FLUIDS.glob("*.osd"))), 300)
        for file in sorted(FLUIDS.glob("*.osd")):
            for what, values, comment in read(file):
                with self.subTest(file=file.name, record=what):
                    self.assertIn(UNITS.get(what, ""), comment)
                    if what in MODELS:
                        stated = comment.removeprefix(f"{what}: ")
                        self.assertRegex(stated, rf"^{MODELS[what][int(values[0])]}($|[,;])")

    def test_every_line_fits_into_a_record(self):
        for file in sorted(FLUIDS.glob("*.osd")):
            with self.subTest(file=file.name):
                text = file.read_bytes().decode("latin-1")
                self.assertRegex(text, r"\A(?:[ -~]{1,255}\n){16,254}\Z")
                for line in text.split("\n")[1:3]:
                    self.assertLessEqual(len(line.rstrip()), 32, f"cut: {line}")

    def test_every_file_follows_the_formulas(self):
        for file in sorted(FLUIDS.glob("*.osd")):
            found = read(file)
            comments = {what: comment for what, _, comment in found}
            texts = {what: values[0] for what, values, _ in found if values}
            value = {what: float(texts[what]) for what in texts.keys() & NUMBERS}
            with self.subTest(file=file.name, formula="end"):
                self.assertEqual(comments["rest"], "")
            MM, Tc, Pc = value["MM"], value["Tc"], float(number("NUMBER Pa ", comments["Pc"]))
            R = 8314 / MM  # J/(kg K)
            with self.subTest(file=file.name, formula="Pc = p/101325 but for the last digits"):
                self.assertEqual(len(texts["Pc"].replace(".", "")), 10)
                self.assertLess(abs(value["Pc"] * 101325 / Pc - 1), 3e-9)
            Vc = float(number("from Vc NUMBER m3/mol", comments["Zc"]))
            with self.subTest(file=file.name, formula="Zc = Pc Vc/(8.314463 Tc)"):
                tolerance = half(texts["Zc"]) + value["Zc"] * digit(Vc, 6) / Vc
                self.assertAlmostEqual(value["Zc"], Pc * Vc / (8.31446261815324 * Tc), delta=tolerance)
            with self.subTest(file=file.name, formula="omega of Edmister"):
                omega = number("omega = NUMBER ", comments["Tb"])
                Tb = texts["Tb"] if "gives omega" in comments["Tb"] else number("NUMBER would give", comments["Tb"])

                def edmister(T):
                    return 3 / 7 * math.log10(Pc / 101325) * T / (Tc - T) - 1

                self.assertGreaterEqual(edmister(float(Tb) + half(Tb)), float(omega) - half(omega))
                self.assertLessEqual(edmister(float(Tb) - half(Tb)), float(omega) + half(omega))
            with self.subTest(file=file.name, formula="mur = 131.3 mu/sqrt(Vc Tc)"):
                mu = 0.0 if "not known" in comments["mur"] else float(number("from NUMBER debye", comments["mur"]))
                factor = 131.3 / math.sqrt(Vc * 1e6 * Tc)  # Vc in cm3/mol
                tolerance = factor * digit(mu, 4) + half(texts["mur"]) if mu else 0
                self.assertAlmostEqual(value["mur"], factor * mu, delta=tolerance)
            multiple = float(number("NUMBER R$", comments["cv_0"]))
            with self.subTest(file=file.name, formula="cv_0 = (c0 - 1) R"):
                self.assertEqual(value["cv_0"], float(f"{multiple * R:.9g}"))
            if "kk_const" in value:
                with self.subTest(file=file.name, formula="k = mu (1.32 cv + 1.77 R)"):
                    T = float(number("at NUMBER K", comments["kk_const"]))
                    temperatures = next((values for what, values, _ in found if what == "Tv"), [])
                    cv = multiple * R + R * sum(einstein(float(Tv) / T) for Tv in temperatures)
                    if texts["viscosity_model"] == "5":
                        mu, T_ref, S = (float(text) for text in next(v for what, v, _ in found if what == "mu_ref_s"))
                        viscosity = mu * (T / T_ref) ** 1.5 * (T_ref + S) / (T + S)
                    else:
                        viscosity = 3.4e-7 * MM**0.5 * (Pc / 101325) ** (2 / 3) / Tc ** (1 / 6) * (T / Tc) ** 0.94
                    self.assertEqual(value["kk_const"], float(f"{viscosity * (1.32 * cv + 1.77 * R):.4g}"))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[2:]])
