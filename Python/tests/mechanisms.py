"""Models that tests look at."""

import math

import karmp


def four_bar(name="Four-bar linkage"):
    """Three rods between two bearings of the ground."""
    a, d = (0, 0, 0), (0.3, 0, 0)
    b = (0.1 * math.cos(1), 0.1 * math.sin(1), 0)
    c = karmp.meeting_point(b, 0.3, d, 0.2)
    m = karmp.Model(name, gravity=(0, -9.81, 0))
    crank = m.add_rod("Crank", 0.2, a, b, 0.005)
    coupler = m.add_rod("Coupler", 0.6, b, c, 0.005)
    rocker = m.add_rod("Rocker", 0.4, d, c, 0.005)
    bearing = m.add_joint(karmp.Revolute, "A", m.ground, crank, a)
    m.add_joint(karmp.Revolute, "B", crank, coupler, b)
    m.add_joint(karmp.Revolute, "C", coupler, rocker, c)
    m.add_joint(karmp.Revolute, "D", m.ground, rocker, d)
    m.variable("Crank angle", bearing)
    return m
