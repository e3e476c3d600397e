-- Sample customer, object and contractor for Sp/peoplebase.db.
BEGIN;
INSERT INTO Customer (fio, email, phone, object, note, address, fax, okpo, function, numroom, Region, City, Area, Street, House, Agent) VALUES ('Кудрявцев Олег Николаевич', 'o.kudryavtsev@example.com', '+7 (999) 214-57-38', '', 'Звонить после 18:00', 'Ярославская обл., г.Ярославль, ул. Садовая, д.14, кв.37', '', '', '', '37', 'Ярославская', 'Ярославль', '', 'Садовая', '14', '');
INSERT INTO Object (object, fio, namebuild, addressbuild, note) VALUES ('Квартира, ул. Садовая, д. 14, кв. 37', 'Кудрявцев Олег Николаевич', 'Двухкомнатная квартира', 'г.Ярославль, ул. Садовая, д.14, кв.37', '5 этаж, лифт грузовой; ключи у заказчика');
INSERT INTO Contractor (shotname, longname, phone) VALUES ('ИП Соболев Д.А.', 'Индивидуальный предприниматель Соболев Денис Андреевич', '+7 (999) 308-41-16');
COMMIT;
