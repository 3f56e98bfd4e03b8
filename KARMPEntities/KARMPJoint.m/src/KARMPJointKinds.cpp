#include "KARMPJointKinds.h"

#include "KARMPKindDefinition.h"

KARMP_DEFINE_KIND(KARMPRevolute, "8A63D1C8-9EA2-4648-9912-379A66C7B63C", L"Revolute", PassingFrame,
                  "A joint that leaves a rotation about an axis.");
KARMP_DEFINE_KIND(KARMPPrismatic, "443A4A98-0ACE-41df-BFF1-DAF3988B82C2", L"Prismatic",
                  PassingFrame, "A joint that leaves a translation along an axis.");
KARMP_DEFINE_KIND(KARMPCylindrical, "9A41726A-78D5-4674-B8BF-E39F1A404303", L"Cylindrical",
                  PassingFrame,
                  "A joint that leaves a rotation about an axis and a translation along it.");
KARMP_DEFINE_KIND(KARMPSpherical, "1CB6E905-6601-49ba-9E2D-3E68544B6EBC", L"Spherical",
                  PassingFrame, "A joint that leaves all rotations about a point.");
KARMP_DEFINE_KIND(KARMPPlanar, "C855983D-4B1F-4611-98AD-E3C735A77BFA", L"Planar", PassingFrame,
                  "A joint that leaves the motion in a plane.");
KARMP_DEFINE_KIND(KARMPUniversal, "41A64EF6-3CDF-49c2-AE78-F962AE3F4561", L"Universal",
                  PassingFrame, "A joint that leaves two rotations, about axes that cross.");
KARMP_DEFINE_KIND(KARMPRigid, "C2AF513B-FD5A-4bb1-9000-D536BC788A02", L"Rigid", PassingFrame,
                  "A joint that leaves no motion.");
KARMP_DEFINE_KIND(KARMPPointCurve, "C9E10801-BCD5-4a39-97F4-1566D5B73542", L"PointCurve",
                  PassingFrame, "A joint that keeps a point on a curve.");
KARMP_DEFINE_KIND(KARMPPointSurface, "0B713522-0419-4778-B8A8-4A76B083D773", L"PointSurface",
                  PassingFrame, "A joint that keeps a point on a surface.");
KARMP_DEFINE_KIND(KARMPRollCurve, "2B25E499-F0B3-4818-BA4D-68A3D54DF62C", L"RollCurve",
                  PassingFrame, "A joint that lets a curve roll on another one.");
KARMP_DEFINE_KIND(KARMPSlideCurve, "50DC0FC1-85B0-4beb-BFB1-4B731DBB6A03", L"SlideCurve",
                  PassingFrame, "A joint that lets a curve slide on another one.");
KARMP_DEFINE_KIND(KARMPSymmetric, "6EF921DF-16CE-4296-B39B-9010FC10C032", L"Symmetric",
                  PassingFrame, "A joint that keeps two bodies symmetric about a plane.");
KARMP_DEFINE_KIND(KARMPUserDefined, "896FAB27-2CC6-4801-81EE-9C3EBCC81B10", L"UserDefined",
                  PassingFrame, "A joint that leaves whatever motion its constraints leave.");
