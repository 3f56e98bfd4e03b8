"""A four-bar linkage: the positions of the closed loop, three rods, four revolute joints and the
crank's angle from where it stands. The program saves it, loads it again, and checks it."""

from math import cos, sin

import karmp

a, d = (0, 0, 0), (0.3, 0, 0)
b = (0.1 * cos(1), 0.1 * sin(1), 0)
c = karmp.meeting_point(b, 0.3, d, 0.2)
assert c is not None
model = karmp.Model("Four-bar linkage", gravity=(0, -9.81, 0))
crank = model.add_rod("Crank", 0.2, a, b, radius=0.005)
coupler = model.add_rod("Coupler", 0.6, b, c, radius=0.005)
rocker = model.add_rod("Rocker", 0.4, d, c, radius=0.005)
bearing = model.add_joint(karmp.Revolute, "A", model.ground, crank, a)
model.add_joint(karmp.Revolute, "B", crank, coupler, b)
model.add_joint(karmp.Revolute, "C", coupler, rocker, c)
model.add_joint(karmp.Revolute, "D", model.ground, rocker, d)
model.variable("Crank angle", bearing)
model.save("four-bar.xml")
assert not karmp.load("four-bar.xml").check()
